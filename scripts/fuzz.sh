#!/usr/bin/env bash
# fuzz.sh FOLDER SECONDS: runs every fuzzer of the folder for that long; a finding is kept in the folder.
set -euo pipefail
folder=$1 seconds=$2
for fuzzer in "$folder"/*_fuzz; do
  printf '%s for %s s\n' "$(basename "$fuzzer")" "$seconds"
  "$fuzzer" -max_total_time="$seconds" -max_len=40000 -print_final_stats=1 -artifact_prefix="$folder/" 2>&1 |
    grep -E 'stat::number_of_executed_units|ERROR|SUMMARY|Test unit' || true
  [ "${PIPESTATUS[0]}" -eq 0 ] || { printf '%s found something, see above\n' "$fuzzer"; exit 1; }
done

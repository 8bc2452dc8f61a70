#!/usr/bin/env bash
# fuzz.sh FOLDER SECONDS: runs every fuzzer of the folder for that long; a finding is kept in the folder.
set -euo pipefail
folder=$1 seconds=$2
for fuzzer in "$folder"/*_fuzz; do
  name=$(basename "$fuzzer")
  printf '%s for %s s\n' "$name" "$seconds"
  if ! "$fuzzer" -max_total_time="$seconds" -max_len=40000 -print_final_stats=1 -artifact_prefix="$folder/$name-" \
    >"$folder/$name.log" 2>&1; then
    tail -n 40 "$folder/$name.log"
    printf '%s found something; the input lies beside %s\n' "$name" "$folder/$name.log"
    exit 1
  fi
  grep 'stat::number_of_executed_units' "$folder/$name.log"
done

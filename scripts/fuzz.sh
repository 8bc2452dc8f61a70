#!/usr/bin/env bash
# fuzz.sh FOLDER SECONDS: runs every fuzzer of the folder for that long, that of the formats so long for each of them,
# from the seeds and words in fuzz/ and from what earlier runs came upon; a finding is kept in the folder.
set -euo pipefail
cd "$(dirname "$0")/.."
declare -A words=([store_fuzz]=keplo [protocol_fuzz]=keplo [index_fuzz]=index [host_file_fuzz]=host)
formats=(flipper lirc girr keymap esphome tasmota ha smartir irdb pronto mode2 one-line)
folder=$1 seconds=$2

# run NAME [WORD=VALUE...]: one fuzzer, with that in its environment.
run() {
  local name=$1 given=("$folder/$1-corpus")
  shift
  printf '%s for %s s\n' "$name${1:+ with $*}" "$seconds"
  mkdir -p "$folder/$name-corpus"
  if [ -d "fuzz/seeds/$name" ]; then given+=("fuzz/seeds/$name"); fi
  if [ -n "${words[$name]:-}" ]; then given+=("-dict=fuzz/${words[$name]}.dict"); fi
  if ! env "$@" "$folder/$name" "${given[@]}" -max_total_time="$seconds" -max_len=40000 -print_final_stats=1 \
    -artifact_prefix="$folder/$name-" >"$folder/$name.log" 2>&1; then
    tail -n 40 "$folder/$name.log"
    printf '%s found something; the input lies beside %s\n' "$name" "$folder/$name.log"
    exit 1
  fi
  grep 'stat::number_of_executed_units' "$folder/$name.log"
}

for fuzzer in "$folder"/*_fuzz; do
  name=$(basename "$fuzzer")
  run "$name"
  [ "$name" = formats_fuzz ] || continue
  for format in "${formats[@]}"; do run "$name" "KEPLO_FORMAT=$format"; done
done

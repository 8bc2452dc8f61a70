#!/usr/bin/env bash
# Runs clang-tidy over all sources, a module at a time, and over all tests.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" libgtest-dev clang-tidy-14
configure tidy
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# tidy FOLDER [OPTION...]: what was compiled below that folder, as many at a time as there are processors.
tidy() {
  local folder=$1
  shift
  sed -n 's/^ *"file": "\(.*\)".*/\1/p' build/tidy/compile_commands.json | grep "/$folder/" |
    grep -v '/foreign' |
    xargs -n 1 -P "$(nproc)" clang-tidy-14 --quiet -p build/tidy --extra-arg=-Wno-unknown-warning-option "$@" \
      >>"$log" 2>/dev/null
}

say "Looking through sources and tests with clang-tidy"
status=0
# A module is one unit, which includes its sources.
tidy src '--checks=-bugprone-suspicious-include' || status=1
# In tests those checks are left out that take the most time over the headers of Qt and of the tests, and find
# what is seen when a test runs; a text that a test puts together is there to be read.
tidy tests '--checks=-clang-analyzer-*,-performance-inefficient-*,-bugprone-reserved-identifier,-bugprone-stringview-nullptr,-bugprone-suspicious-string-compare,-bugprone-undelegated-constructor' ||
  status=1
if [ "$status" -ne 0 ]; then
  grep -E '(error|warning): ' "$log" | sort -u >&2 || cat "$log" >&2
  exit 1
fi
say "clang-tidy finds nothing"

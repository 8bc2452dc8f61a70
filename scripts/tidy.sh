#!/usr/bin/env bash
# tidy.sh [FILE...]: clang-tidy over all sources and tests, or over the named files only.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" libgtest-dev clang-tidy-14
configure tidy
if [ $# -eq 0 ]; then
  mapfile -t files < <(find src tests -name '*.cpp' | sort)
else
  files=("$@")
fi
say "Looking through ${#files[@]} files with clang-tidy"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! printf '%s\0' "${files[@]}" |
  xargs -0 -n 4 -P "$(nproc)" clang-tidy-14 --quiet -p build/tidy --extra-arg=-Wno-unknown-warning-option \
    >"$log" 2>/dev/null; then
  grep -E '(error|warning): ' "$log" | sort -u >&2
  exit 1
fi
say "Clean"

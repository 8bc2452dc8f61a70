#!/usr/bin/env bash
# Prints the lines of src/ that no test and no fuzzer reaches, "file:first-last" each, and the share that is
# reached. The fuzzers run once over their seeds and over what ./run --fuzz came upon before.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" "${test_packages[@]}" clang libclang-rt-14-dev llvm
tests=build/coverage fuzzers=build/fuzz_coverage
configure coverage
building coverage
configure fuzz_coverage
building fuzz_coverage

rm -rf "$tests/profiles"
ctest --preset coverage --output-on-failure -j "$(nproc)" >&2 || say "Some tests failed; their lines count all the same."
for fuzzer in "$fuzzers"/bin/*_fuzz; do
  name=$(basename "$fuzzer")
  inputs=()
  for folder in "fuzz/seeds/$name" "build/fuzz/bin/$name-corpus"; do
    [ -d "$folder" ] && inputs+=("$folder")
  done
  LLVM_PROFILE_FILE="$tests/profiles/$name.profraw" quietly "$fuzzer" -runs=0 "${inputs[@]}"
done
llvm-profdata merge -o "$tests/all.profdata" "$tests"/profiles/*.profraw

# Each program tells its own lines; a line is reached where one of them reached it.
for program in "$tests"/bin/* "$fuzzers"/bin/*_fuzz $(find "$tests/src" -name '*.so'); do
  [ -x "$program" ] && [ -f "$program" ] || continue
  llvm-cov export --format=lcov --instr-profile "$tests/all.profdata" "$program" 2>/dev/null || true
done | awk -v root="$root/" '
  /^SF:/ { file = substr($0, 4); sub(root, "", file) }
  /^DA:/ && file ~ /^src\// {
    split(substr($0, 4), at, ",")
    if (!((file, at[1]) in count)) { known[file] = known[file] " " at[1]; lines++ }
    count[file, at[1]] += at[2]
  }
  END {
    for (file in known) {
      n = split(known[file], numbers, " ")
      for (i = 1; i <= n; i++)
        if (count[file, numbers[i]] == 0) { missed++; printf "%s %d\n", file, numbers[i] }
    }
    printf "%d of %d lines reached, %.1f %%\n", lines - missed, lines, 100 * (lines - missed) / lines >"/dev/stderr"
  }' | sort -k1,1 -k2,2n | awk '
  $1 == file && $2 == last + 1 { last = $2; next }
  file != "" { print file ":" first (first == last ? "" : "-" last) }
  { file = $1; first = last = $2 }
  END { if (file != "") print file ":" first (first == last ? "" : "-" last) }'

#!/usr/bin/env bash
# Runs clang-tidy over all sources, a module at a time, and over all tests and benchmarks.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" "${bench_packages[@]}" clang-tidy-14
configure tidy
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Most of its time clang-tidy matches the headers of Qt and of the tests against each check. In tests those
# checks are left out that the compiler, the sanitizers or the test itself as it runs make needless, and those
# of speed; a text that a test puts together is there to be read.
for_tests='-clang-analyzer-*,-performance-*'
for check in assert-side-effect infinite-loop multiple-statement-macro reserved-identifier sizeof-expression \
  stringview-nullptr suspicious-semicolon suspicious-string-compare undelegated-constructor; do
  for_tests+=",-bugprone-$check"
done
for_tests+=',-readability-redundant-declaration'

# Prints "CHECKS FILE" for all that is compiled, the longest first, so that no processor waits for the last.
# A module is one unit, which includes its sources.
files() {
  sed -n 's/^ *"file": "\(.*\)".*/\1/p' build/tidy/compile_commands.json |
    awk -v root="$root/" -v tests="$for_tests" '{
      file = substr($0, length(root) + 1)
      if (file ~ /foreign|^build\/tidy\/tools/) next
      if (file ~ /^(tests|bench)/) print 2, tests, file
      else print (file ~ /_(qt|line|host_program)\.dir|keplo\.dir/ ? 0 : 1), "-bugprone-suspicious-include", file
    }' | sort -s -n -k 1,1 | cut -d ' ' -f 2-
}

say "Looking through sources, tests and benchmarks with clang-tidy"
if ! files | xargs -n 2 -P "$(nproc)" sh -c 'clang-tidy-14 --quiet -p build/tidy \
    --extra-arg=-Wno-unknown-warning-option "--checks=$0" "$1" 2>/dev/null' >"$log"; then
  grep -E '(error|warning): ' "$log" | sort -u >&2 || cat "$log" >&2
  exit 1
fi
say "clang-tidy finds nothing"

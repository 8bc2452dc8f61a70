#!/usr/bin/env bash
# Holds the includes of src/ against the layers: a module may know only modules of the rows below its own.
#   scripts/modules.sh           checks, and prints the picture of docs/architecture.md
#   scripts/modules.sh --write   checks, and writes the picture into docs/architecture.md
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# From the top. A file of src/ itself is a module too.
layers='cli component host_program window_program
station qt
shell window synth
keplo_mod line install remotes
formats config events component_loader broker
program
disk ui signal host
failure links typed_command event_id'

# Prints "FROM TO" for every module that includes a file of another.
arrows() {
  find src -name '*.cpp' -o -name '*.h' -o -name '*.in' | sort | xargs awk '
    match($0, /^#include "[^"]+"/) {
      split(FILENAME, place, "/"); from = place[2]; sub(/\..*/, "", from)
      name = substr($0, 11, RLENGTH - 11)
      beside = FILENAME; sub(/[^\/]*$/, name, beside)
      if (name !~ /\// && from != name && (getline line <beside) >= 0 && beside != "src/" name) next
      split(name, path, "/"); to = path[1]; sub(/\..*/, "", to)
      if (from != to && !seen[from, to]++) print from, to
    }'
}

picture=$({ printf '%s\n' "$layers" | sed 's/^/layer /'; arrows; } | awk '
  $1 == "layer" { ++rows; for (i = 2; i <= NF; ++i) { row[$i] = rows; order[++names] = $i } next }
  {
    for (i = 1; i <= 2; ++i) if (!($i in row)) {
      print "src/" $i " has no row in scripts/modules.sh" > "/dev/stderr"; wrong = 1
      next
    }
    known[$1] = known[$1] " " $2; there[$1]; there[$2]; ++count
    if (row[$1] >= row[$2]) {
      print "src/" $1 " includes src/" $2 ", which does not lie below it" > "/dev/stderr"; wrong = 1
    }
  }
  END {
    if (wrong) exit 1
    for (i = 1; i <= names; ++i) {
      name = order[i]
      if (!(name in there)) continue
      ++modules
      if (row[name] != last && last) print ""
      last = row[name]
      if (known[name] != "") printf "%-17s ->%s\n", name, known[name]
      else print name
    }
    print ""
    printf "%d modules, %d arrows of %d possible ones\n", modules, count, modules * (modules - 1) / 2
  }')

if [ "${1:-}" = --write ]; then
  awk -v picture="$picture" '
    /^```modules/ { print; print picture; inside = 1 }
    /^```$/ { inside = 0 }
    !inside' docs/architecture.md >docs/architecture.md.new
  mv docs/architecture.md.new docs/architecture.md
else
  printf '%s\n' "$picture"
fi

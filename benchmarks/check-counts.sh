#!/usr/bin/env bash
# Counts the instructions of the library's hot paths, which unlike times are the same at every run, and fails when one
# has grown by more than a tenth over benchmarks/instruction-counts.txt.
#
#   benchmarks/check-counts.sh [--update]     --update writes the counts down again
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset release -DVANTORAUDIO_BUILD_TESTS=OFF >/dev/null
cmake --build --preset release --target vantoraudio-counted >/dev/null
counted=$PWD/build/release/benchmarks/vantoraudio-counted
# No OpenGL there: the frame is drawn by the software device, whose every instruction counts.
export QT_QPA_PLATFORM=offscreen

count() { # NAME
  valgrind --tool=callgrind --callgrind-out-file=/dev/null --collect-atstart=no --toggle-collect=CountedWork \
    "$counted" "$1" 2>&1 >/dev/null | awk '/Collected :/ { print $4 }'
}

kept=benchmarks/instruction-counts.txt
new=$(mktemp)
trap 'rm -f "$new"' EXIT
for name in $("$counted"); do
  printf '%s %s\n' "$name" "$(count "$name")" >>"$new"
done
if [ "${1:-}" = --update ]; then
  cp "$new" "$kept"
fi
awk '
  NR == FNR { kept[$1] = $2; next }
  { printf "%-14s %14d  %6.1f %% of %d\n", $1, $2, 100 * $2 / kept[$1], kept[$1]
    if (!($1 in kept) || $2 == 0 || $2 > 1.1 * kept[$1]) { print "  grown by more than a tenth"; grown = 1 } }
  END { exit grown }' "$kept" "$new"

#!/usr/bin/env bash
# Builds and runs every test under a private display and a private sound server.
#
#   scripts/test.sh [PRESET] [CTEST-ARGUMENT ...]     PRESET: dev (default), release, asan or tsan
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-dev}
[ $# -eq 0 ] || shift

scripts/setup.sh
cmake --preset "$preset" -DVANTORAUDIO_BUILD_TESTS=ON
cmake --build --preset "$preset"
result=0
# Much of the suite's time is waiting, for sound above all, so that two processors serve five tests; four under a sanitizer.
tests_at_once=$((5 * $(nproc) / 2))
[[ $preset != *san ]] || tests_at_once=$((2 * $(nproc)))
scripts/private-session.sh ctest --preset "$preset" --parallel "$tests_at_once" "$@" || result=$?
# CTest keeps to itself what a program that passed had to say.
echo "Left out, with the reason, or tried twice:"
grep -aE '^(SKIP  |SECOND TRY)' "build/$preset/Testing/Temporary/LastTest.log" | sort | uniq -c || echo "      nothing"
exit "$result"

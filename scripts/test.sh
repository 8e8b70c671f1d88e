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
# A second try, because Qt's media backend loses races of its own now and then, on a busy machine above all.
scripts/private-session.sh ctest --preset "$preset" --parallel "$(nproc)" --repeat until-pass:2 "$@"

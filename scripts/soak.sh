#!/usr/bin/env bash
# Uses a player at random under a private display and a private sound server, and fails where it hangs or where memory,
# open files or threads grow.
#
#   scripts/soak.sh [SECONDS [SEED]]      two minutes unless given; half an hour by hand is the long run
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset dev
cmake --build --preset dev --target vantoraudio-soak
scripts/private-session.sh build/dev/benchmarks/vantoraudio-soak "${1:-120}" "${@:2}"

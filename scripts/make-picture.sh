#!/usr/bin/env bash
# Lets the host program take the README's picture of itself: FILE, zoomed in, with a selection.
#
#   scripts/make-picture.sh FILE VIEW SELECTION     ranges in seconds, for example 2-6 3-4.5
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset release -DVANTORAUDIO_BUILD_TESTS=OFF
cmake --build --preset release --target vantoraudio-player
scripts/private-session.sh build/release/examples/player/vantoraudio-player \
  --screenshot docs/player.png --view "$2" --selection "$3" -- "$1"

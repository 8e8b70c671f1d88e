#!/usr/bin/env bash
# Builds the host program and opens, shows and plays FILE, or a bundled recording when none is given. Without a
# display it does so under a virtual one and leaves a screenshot.
#
#   scripts/run.sh [FILE] [OPTION ...]
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)

file=$project/examples/player/recordings/welcome.wav
if [ $# -gt 0 ]; then
  file=$1
  shift
fi

cd "$project"
scripts/setup.sh
cmake --preset release -DVANTORAUDIO_BUILD_TESTS=OFF
cmake --build --preset release --target vantoraudio-player
cd "$OLDPWD"

player=$project/build/release/examples/player/vantoraudio-player
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec "$player" --play "$@" -- "$file"
fi

screenshot=$project/build/screenshot.png
rm -f "$screenshot"
"$project/scripts/private-session.sh" "$player" --play --screenshot "$screenshot" "$@" -- "$file"
echo "No display here: a virtual one was used. The window looked like $screenshot"

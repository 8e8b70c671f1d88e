#!/usr/bin/env bash
# Leads the host program through what a user does with FILE, or with a bundled recording, and leaves a picture of each
# state in FOLDER/SCALE/THEME: empty, loaded, selection, playing, exporting, an error, dialogs and menus, at 100, 150
# and 200 % in light, dark and high contrast, and with fonts of 6, 10 and 24 points.
#
#   scripts/make-pictures.sh FOLDER [FILE]
set -euo pipefail
mkdir -p "$1"
folder=$(realpath "$1")
file=$(realpath "${2:-$(dirname "$0")/../examples/player/recordings/welcome.wav}")
cd "$(dirname "$0")/.."

cmake --preset dev
cmake --build --preset dev --target vantoraudio-pictures

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sox -n -r 48000 -c 2 -b 16 "$work/an hour of noise.wav" synth 3600 pinknoise vol 0.5
for scale in 100 150 200; do
  mkdir -p "$folder/$scale"
  QT_SCALE_FACTOR=$((scale / 100)).$((scale % 100)) scripts/private-session.sh \
    build/dev/tests/examples/vantoraudio-pictures "$folder/$scale" "$file" "$work/an hour of noise.wav" \
    2>"$work/messages" || { cat "$work/messages" >&2; exit 1; }
done

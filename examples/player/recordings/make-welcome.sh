#!/usr/bin/env bash
# Makes welcome.wav again: a tune for two plucked strings, composed for this program and under its licence. Needs sox.
#
#   examples/player/recordings/make-welcome.sh
set -euo pipefail
cd "$(dirname "$0")"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
rate=44100

voice() { # FILE LENGTH NOTE...
  local file=$1 length=$2 note place=0 parts=()
  shift 2
  for note in "$@"; do
    if [ "$note" != - ]; then
      sox -R -r $rate -n "$work/$place.wav" synth 2.5 pluck "$note" fade 0 2.5 1 vol 0.5 pad "$(awk "BEGIN { print $place * $length }")"
      parts+=("$work/$place.wav")
    fi
    place=$((place + 1))
  done
  sox -m "${parts[@]}" "$work/$file" pad 0 1 trim 0 17.05 norm -6
  rm "${parts[@]}"
}

voice melody.wav 0.32 \
  E4 G4 A4 - C5 - A4 G4 E4 - G4 - - - D4 E4 \
  G4 - E4 D4 C4 - D4 - - - - - C5 D5 E5 - \
  D5 - C5 A4 G4 - A4 - E4 - D4 - C4
voice bass.wav 0.64 C3 G2 A2 E3 F2 C3 G2 - C3 G2 A2 E3 F2 C3 G2 - A2 E3 F2 C3 G2 D3 C3 - C2
# The melody on the left, the bass on the right, each with a little of the other.
sox -R -M "$work/melody.wav" "$work/bass.wav" -b 16 welcome.wav remix 1,2v0.3 2,1v0.3 reverb 20 rate 22050 gain -n -3

#!/usr/bin/env bash
# Brings the translations' files up to date with the texts in the sources. What is new stands there as unfinished.
#
#   scripts/update-translations.sh [FOLDER]    where the files are, the project's own by default
set -euo pipefail
cd "$(dirname "$0")/.."
folder=${1:-.}

program=$(PATH="$(qmake6 -query QT_INSTALL_BINS 2>/dev/null || true):/usr/lib/qt6/bin:$PATH" command -v lupdate || true)
[ -n "$program" ] || { echo 'update-translations: lupdate is not here' >&2; exit 1; }

# Without line numbers and texts that are gone, so that a difference shows what changed. Guesses are left out: a person
# is to translate what is new.
options=(-locations none -no-obsolete -disable-heuristic sametext -disable-heuristic similartext)
for language in de es fr ja; do
  "$program" "${options[@]}" include engine playback render ui -ts "$folder/translations/vantorAudioEngine_$language.ts"
  "$program" "${options[@]}" examples/player -ts "$folder/examples/player/translations/player_$language.ts"
done

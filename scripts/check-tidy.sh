#!/usr/bin/env bash
# Runs clang-tidy over the library and the host programs: all of their files that the preset compiles, which is dev by
# default. It must be configured and built.
#
#   scripts/check-tidy.sh [PRESET]
set -euo pipefail
cd "$(dirname "$0")/.."

git ls-files --cached --others --exclude-standard -- \
    'engine/*.cpp' 'playback/*.cpp' 'render/*.cpp' 'ui/*.cpp' 'examples/*.cpp' |
  while read -r file; do
    # Without bgfx the files that are about it are not compiled.
    ! grep -qF "\"file\": \"$PWD/$file\"" "build/${1:-dev}/compile_commands.json" || printf '%s\0' "$file"
  done |
  xargs -0 -r -n 1 -P "$(nproc)" clang-tidy -p "build/${1:-dev}" --quiet
echo "clang-tidy: clean"

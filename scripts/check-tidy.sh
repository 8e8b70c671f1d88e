#!/usr/bin/env bash
# Runs clang-tidy over the library and the host programs. Needs a configured and built preset (dev by default).
#
#   scripts/check-tidy.sh [PRESET]
set -euo pipefail
cd "$(dirname "$0")/.."

git ls-files --cached --others --exclude-standard -z -- \
    'engine/*.cpp' 'playback/*.cpp' 'render/*.cpp' 'ui/*.cpp' 'examples/*.cpp' |
  xargs -0 -r -n 1 -P "$(nproc)" clang-tidy -p "build/${1:-dev}" --quiet
echo "clang-tidy: clean"

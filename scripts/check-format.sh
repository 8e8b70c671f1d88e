#!/usr/bin/env bash
# Fails when a source file is not formatted as .clang-format says. `scripts/check-format.sh --fix` formats. Versions of
# clang-format differ in what they make of the same rules, so that only one counts.
set -euo pipefail
cd "$(dirname "$0")/.."

version=14
program=$(command -v "clang-format-$version" || command -v clang-format || true)
if [ -z "$program" ] || ! "$program" --version | grep -q "version $version\\."; then
  echo "check-format: left out, clang-format $version is not here"
  exit 0
fi

mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
git ls-files --cached --others --exclude-standard -z -- '*.cpp' '*.h' | xargs -0 -r "$program" "${mode[@]}"

#!/usr/bin/env bash
# Fails when a source file is not formatted as .clang-format says. `scripts/check-format.sh --fix` formats.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
git ls-files --cached --others --exclude-standard -z -- '*.cpp' '*.h' | xargs -0 -r clang-format-14 "${mode[@]}"

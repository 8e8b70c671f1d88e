#!/usr/bin/env bash
# Builds the fuzzers and runs each for a while; a finding ends with an error and leaves its input behind.
#
#   scripts/fuzz.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset fuzz
cmake --build --preset fuzz
mkdir -p build/fuzz/inputs
build/fuzz/fuzz/fuzz_wavheader -max_total_time="${1:-60}" -max_len=4096 -rss_limit_mb=512 \
  -artifact_prefix=build/fuzz/ build/fuzz/inputs 2>&1 | tail -n 4

#!/usr/bin/env bash
# Builds the fuzzers and runs each for a while, two at a time. A finding ends with an error and leaves its input in
# build/fuzz/findings. Inputs that reached something new are kept in build/fuzz/corpus for the next run.
#
#   scripts/fuzz.sh [SECONDS [TARGET...]]      a minute for each target unless given
#
# FUZZ_SEED=NUMBER makes the same inputs again; without it each run makes others.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
[ $# -eq 0 ] || shift
# The long ones first, so that the two processors end together.
targets=(player waveform import probe convert readdata createsnippet filterchannel wavheader timetext timescale)
[ $# -eq 0 ] || targets=("$@")

cmake --preset fuzz
cmake --build --preset fuzz
export build=$PWD/build/fuzz seconds
rm -rf "$build/seeds"
scripts/make-seeds.sh "$build/seeds"
mkdir -p "$build/findings" "$build/logs"

# The files of the inputs lie in memory where the system has such a folder.
TMPDIR=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

fuzz() {
  local target=$1 seeds=wav longest=4096 piece=64
  local leaks=none session=() memory=1024
  case $target in
    import | probe) seeds=audio longest=16384 piece=2048 ;;
    convert) piece=2048 ;;
    waveform) leaks=widgets longest=512 memory=4096 ;;
    player) leaks=widgets longest=2048 piece=2048 memory=4096 session=(scripts/private-session.sh) ;;
  esac
  mkdir -p "$build/corpus/$target"
  # The leak check of Clang before 17 may read a range that does not exist, see tests/CMakeLists.txt.
  export LSAN_OPTIONS=intercept_tls_get_addr=0
  # What Qt and its plug-ins keep until the program ends.
  [ "$leaks" = none ] || LSAN_OPTIONS+=":suppressions=$PWD/fuzz/lsan.supp:print_suppressions=0"
  # An input that hangs is found by -timeout, one that is too slow by the fuzzer itself. No input is longer than
  # 16 KiB: what asks for more than 64 MiB at once trusts a size that some header states. FFmpeg's demuxers do, up to
  # 2 GiB, without using it; so with FFmpeg only the memory in use counts.
  # Of the widgets' memory most is the sanitizer's own, which notes every thread and every way to an allocation: some
  # 25 MiB more a minute.
  "${session[@]}" "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len="$longest" -timeout=20 \
    -seed="${FUZZ_SEED:-0}" -malloc_limit_mb="$piece" -rss_limit_mb="$memory" -print_final_stats=1 \
    -artifact_prefix="$build/findings/$target-" "$build/corpus/$target" "$build/seeds/$seeds" \
    >"$build/logs/$target" 2>&1 || {
    tail -n 60 "$build/logs/$target"
    echo "fuzz_$target: a finding, see $build/findings"
    return 1
  }
  echo "fuzz_$target: $(sed -n 's/^stat::number_of_executed_units: *//p' "$build/logs/$target") executions in $seconds s"
}
export -f fuzz
printf '%s\n' "${targets[@]}" | xargs -P 2 -I{} bash -euo pipefail -c 'fuzz {}'

#!/usr/bin/env bash
# Imports every file below DIR with the library, holds the samples against those that ffmpeg decodes, and prints a
# table by container and codec: equal to the last bit, different, refused though ffmpeg decodes it, decoded by neither,
# and crashed or not done within a minute. Build vantoraudio-task before.
#
#   scripts/try-corpus.sh DIR [TASK]      TASK is build/dev/benchmarks/vantoraudio-task unless given
set -euo pipefail

if [ $# -ge 1 ] && [ "$1" = --one ]; then
  # One file. Prints kind, outcome, name and what was said, with tabs between.
  task=$2 file=$3
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT

  show() { # SECTION FIELD
    timeout 60 ffprobe -v quiet -select_streams a:0 -show_entries "$1=$2" -of default=nw=1:nk=1 "file:$file" |
      head -n 1 || true
  }
  no_samples=d41d8cd98f00b204e9800998ecf8427e
  samples() { # FILE OPTION...
    local from=$1
    shift
    timeout 60 ffmpeg -v quiet -nostdin -i "file:$from" -vn "$@" -c:a pcm_f32le -f md5 - | grep -v "$no_samples" || true
  }
  tell() { # OUTCOME TEXT
    local container codec
    container=$(show format format_name)
    codec=$(show stream codec_name)
    printf '%s\t%s\t%s\t%s\n' "${container:-unknown}/${codec:-none}" "$1" "$file" "$2"
  }

  status=0
  timeout 60 "$task" import "$file" "$work/out.wav" 0 >/dev/null 2>"$work/said" || status=$?
  said=$(grep ' damaged packets' "$work/said" || true)
  if [ "$status" -ge 124 ]; then
    tell crashed "exit $status"
  elif [ "$status" -ne 0 ]; then
    theirs=$(samples "$file")
    sentence=${said#*packets. }
    sentence=${sentence//"$file"/...}
    if [ -n "$theirs" ]; then tell refused "$sentence"; else tell neither "$sentence"; fi
  else
    read -r frames _ rate _ channels _ <<<"$said"
    ours=$(samples "$work/out.wav")
    theirs=$(samples "$file" -ar "$rate" -ac "$channels")
    if [ "$ours" = "$theirs" ]; then
      tell equal ""
    elif [ "$theirs" != "$(samples "$file" -ar "$rate" -ac "$channels")" ]; then
      # Some modules are played with chance.
      tell different "$frames frames; ffmpeg itself differs from run to run"
    else
      tell different "$frames frames"
    fi
  fi
  exit
fi

[ $# -ge 1 ] || { sed -n '2,6s/^# \{0,1\}//p' "$0" >&2; exit 2; }
cd "$(dirname "$0")/.." && project=$PWD && cd "$OLDPWD"
task=$(realpath "${2:-$project/build/dev/benchmarks/vantoraudio-task}")
[ -x "$task" ] || { echo "try-corpus: there is no $task; build the target vantoraudio-task" >&2; exit 1; }

folder=$(realpath "$1")
results=$(mktemp)
trap 'rm -f "$results"' EXIT
find "$folder" -type f -print0 | sort -z |
  xargs -0 -r -n 1 -P "$(nproc)" "$(realpath "$0")" --one "$task" >"$results"

awk -F '\t' '
  { kinds[$1]; files[$1]++; count[$1, $2]++ }
  END {
    printf "%-34s %6s %6s %10s %8s %8s %8s\n", "container/codec", "files", "equal", "different", "refused",
           "neither", "crashed"
    for (kind in kinds) {
      printf "%-34s %6d %6d %10d %8d %8d %8d\n", kind, files[kind], count[kind, "equal"], count[kind, "different"],
             count[kind, "refused"], count[kind, "neither"], count[kind, "crashed"] | "sort"
    }
  }' "$results"
for outcome in different refused neither crashed; do
  if grep -q -P "\t$outcome\t" "$results"; then
    printf '\n%s:\n' "$outcome"
    awk -F '\t' -v outcome="$outcome" -v start="${#folder}" \
      '$2 == outcome { printf "  %s (%s) %s\n", substr($3, start + 2), $1, $4 }' "$results"
  fi
done

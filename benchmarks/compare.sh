#!/usr/bin/env bash
# Times the library against ffmpeg, sox and cat in one run, on files in the page cache, and prints tables of median
# times, ratios and memory. Takes a few minutes and 3 GB of disk.
#
#   benchmarks/compare.sh [RUNS]
set -euo pipefail
cd "$(dirname "$0")/.."

runs=${1:-5}
cmake --preset release >/dev/null
cmake --build --preset release --target vantoraudio-task vantoraudio-window vantoraudio-frame >/dev/null
programs=$PWD/build/release/benchmarks
task=$programs/vantoraudio-task
session=$PWD/scripts/private-session.sh

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

sox -n -r 48000 -c 2 -b 16 hour.wav synth 3600 pinknoise vol 0.5
sox hour.wav ten.wav trim 0 600
lame --quiet -b 192 ten.wav ten.mp3
sox -n -r 48000 -c 2 -e float -b 32 float.wav synth 299 pinknoise vol 0.5
for kind in ogg flac m4a opus; do
  ffmpeg -nostdin -loglevel error -i ten.wav "ten.$kind"
done
cat hour.wav ten.wav ten.mp3 float.wav >/dev/null

median() { # COMMAND
  # Nobody is to be timed while removing or replacing what an earlier run wrote, nor while the disk still stores it.
  hyperfine --shell=none --prepare "sh -c 'rm -f ours.wav peer.wav; sync'" --warmup 1 --runs "$runs" --export-csv times.csv \
    "$1" >/dev/null 2>&1
  # Counted from the end, since the command in front may hold commas: median, user, system, min, max.
  awk -F, 'NR == 2 { print $(NF - 4) }' times.csv
}

peak() { # COMMAND...
  /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -n 1
}

row() { # NAME "TASK" "FFMPEG ARGUMENTS" "SOX COMMAND or -" LIMIT "IDLE TASK"
  local ours ffmpeg sox="-" memory idle
  ours=$(median "$task $2")
  ffmpeg=$(median "ffmpeg -nostdin -loglevel error -y $3")
  [ "$4" = - ] || sox=$(median "$4")
  # shellcheck disable=SC2086
  memory=$(peak "$task" $2)
  # shellcheck disable=SC2086
  idle=$(peak "$task" $6)
  awk -v name="$1" -v ours="$ours" -v ffmpeg="$ffmpeg" -v sox="$sox" -v limit="$5" \
      -v memory="$((memory - idle))" 'BEGIN {
    printf "| %s | %.2f s | %.2f s | %s | %.2f | %s | %.0f MiB |\n", name, ours, ffmpeg,
      (sox == "-" ? "-" : sprintf("%.2f s", sox)), ours / ffmpeg, limit, memory / 1024
  }'
}

echo "| task | this library | ffmpeg | sox | ratio to ffmpeg | at most | memory above idle |"
echo "|---|---|---|---|---|---|---|"
row "left channel of 1 h, 48 kHz, 16 bit, stereo" "left hour.wav ours.wav" \
  "-i hour.wav -af pan=mono|c0=c0 -c:a pcm_s16le peer.wav" "sox hour.wav peer.wav remix 1" 0.25 idle
row "10 min of it mixed to mono" "mix hour.wav ours.wav 600" \
  "-t 600 -i hour.wav -ac 1 -c:a pcm_s16le peer.wav" "sox hour.wav peer.wav trim 0 600 remix 1,2" 0.25 idle
row "10 min MP3 to 96 kHz float" "decode ten.mp3 ours.wav 96000" \
  "-i ten.mp3 -ar 96000 -c:a pcm_f32le peer.wav" "sox ten.mp3 -r 96000 -e float -b 32 peer.wav" 1.5 idle
row "10 min 48 kHz stereo to 44.1 kHz mono float" "convert ten.wav ours.wav 44100" \
  "-i ten.wav -ar 44100 -ac 1 -c:a pcm_f32le peer.wav" "sox ten.wav -r 44100 -c 1 -e float -b 32 peer.wav" 0.9 idle

# What is measured inside a program, without its start; the median of all runs, in milliseconds.
inner() { # COMMAND...
  for ((run = 0; run < runs; ++run)); do
    "$@" 2>/dev/null
  done | sort -n | awk '{ time[NR] = $1 } END { print time[int((NR + 1) / 2)] }'
}

against_cat() { # NAME FILE LIMIT LIMIT-IN-MS COMMAND...
  local name=$1 file=$2 limit=$3 extra=$4
  shift 4
  awk -v name="$name" -v ours="$(inner "$@")" -v cat="$(median "cat $file")" -v limit="$limit" -v extra="$extra" 'BEGIN {
    printf "| %s | %.0f ms | %.0f ms | %.2f | %s%s |\n", name, ours, cat * 1000, ours / (cat * 1000), limit,
      (extra > 0 ? sprintf(", and %d ms", extra) : "")
  }'
}

# Imports by turns with ffmpeg: ours inside the program, ffmpeg with its start. The ratio is the median of the pairs'.
pairs() { # FILE RATE
  local rate=()
  [ "$2" = 0 ] || rate=(-ar "$2")
  for ((run = 0; run < runs; ++run)); do
    local ours start end
    rm -f ours.wav peer.wav
    sync
    ours=$("$task" import "$1" ours.wav "$2" 2>/dev/null)
    rm -f ours.wav
    sync
    start=$EPOCHREALTIME
    ffmpeg -nostdin -loglevel error -i "$1" "${rate[@]}" -c:a pcm_f32le peer.wav
    end=$EPOCHREALTIME
    awk -v ours="$ours" -v start="$start" -v end="$end" \
      'BEGIN { peer = (end - start) * 1000; printf "%.4f %.0f %.0f\n", ours / peer, ours, peer }'
  done | sort -n | awk '{ line[NR] = $0 } END { print line[int((NR + 1) / 2)] }'
}

echo
echo "| import of 10 min | this library | ffmpeg | ratio | at most |"
echo "|---|---|---|---|---|"
for kind in mp3 ogg flac m4a opus; do
  pairs "ten.$kind" 0 | awk -v kind="$kind" '{ printf "| %s | %d ms | %d ms | %.2f | 1.0 |\n", kind, $2, $3, $1 }'
done
pairs ten.mp3 96000 | awk '{ printf "| mp3 to 96 kHz | %d ms | %d ms | %.2f | 1.0 |\n", $2, $3, $1 }'

echo
echo "| task | this library | \`cat\` of the file | ratio | at most |"
echo "|---|---|---|---|---|"
# The step that a view asks for: a thousand values for each pixel column.
against_cat "samples of 1 h for a view of 1600 pixels" hour.wav 2.0 0 "$task" read hour.wav 0 3600 108
against_cat "every sample of 299 s of float stereo" float.wav 5 0 "$task" read float.wav 0 299 1
against_cat "the same with a receiver on another thread" float.wav 8 0 "$task" listen float.wav 0 299 1
against_cat "its 71,760 reports alone, nothing read" float.wav - 0 "$task" report 71760
against_cat "the same view without GLib, on Qt's own event dispatcher" float.wav 8 0 \
  env QT_NO_GLIB=1 "$task" listen float.wav 0 299 1
against_cat "its reports alone without GLib" float.wav - 0 env QT_NO_GLIB=1 "$task" report 71760
against_cat "1 h opened and shown, from a ready copy" hour.wav 3 150 \
  "$session" "$programs/vantoraudio-window" open hour.wav

echo
echo "While an hour is exported the window is frozen for $(inner "$session" "$programs/vantoraudio-window" gap hour.wav \
  ours.wav) ms at most; 50 ms are allowed."
"$session" "$programs/vantoraudio-frame" 2>/dev/null

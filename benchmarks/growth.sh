#!/usr/bin/env bash
# Runs each task of the library three times on files of 1 min, 10 min, 1 h and 3 h, in the page cache, and prints a
# table of median times and of memory with the exponent of growth between the longest two: 1 is linear, 0 constant.
# Takes ten minutes or so and 20 GB of disk.
#
#   benchmarks/growth.sh
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset release >/dev/null
cmake --build --preset release --target vantoraudio-task vantoraudio-window >/dev/null
programs=$PWD/build/release/benchmarks
session=$PWD/scripts/private-session.sh

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

lengths=(60 600 3600 10800)
for seconds in "${lengths[@]}"; do
  sox -n -r 48000 -c 2 -b 16 "$seconds.wav" synth "$seconds" pinknoise vol 0.5
  lame --quiet -b 192 "$seconds.wav" "$seconds.mp3"
done

peak() { # COMMAND...
  /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -n 1
}
task=$programs/vantoraudio-task
window=$programs/vantoraudio-window
idle=$(peak "$task" idle)

# Seconds and KiB above idle of a whole program.
whole() { # COMMAND...
  /usr/bin/time -f '%e %M' "$@" 2>&1 >/dev/null | tail -n 1 | awk -v idle="$idle" '{ print $1, $2 - idle }'
}

# Seconds of another program.
plain() { # COMMAND...
  whole "$@" | awk '{ print $1, "-" }'
}

# Seconds that the program prints as milliseconds, and KiB above idle of the whole.
inner() { # COMMAND...
  "$@" 2>/dev/null | awk '{ print $1 / 1000, "-" }'
}

# What a command measures when its files are in memory and the disk has nothing left to store.
quietly() { # SECONDS MEASURE COMMAND...
  local seconds=$1
  shift
  for _ in 1 2 3; do
    rm -f out.wav
    sync
    cat "$seconds.wav" "$seconds.mp3" >/dev/null
    "$@"
  done | sort -n | sed -n 2p
}

row() { # NAME MEASURE COMMAND...   with SECONDS replaced
  local name=$1 cells=() seconds
  shift
  for seconds in "${lengths[@]}"; do
    cells+=("$(quietly "$seconds" "${@//SECONDS/$seconds}")")
  done
  printf '%s\n' "${cells[@]}" | awk -v name="$name" '
    { time[NR] = $1; memory[NR] = $2 }
    END {
      printf "| %s |", name
      for (i = 1; i <= 4; ++i) {
        printf " %.2f s%s |", time[i], memory[i] == "-" ? "" : sprintf(", %.0f MiB", memory[i] / 1024)
      }
      printf " %.2f |\n", log(time[4] / time[3]) / log(3)
    }'
}

# As many bytes as a task writes for each second of audio, by a program that does nothing else.
write_only() { # SECONDS BYTES-PER-SECOND
  plain dd if=/dev/zero of=out.wav bs=64k count=$(($1 * $2 / 65536)) status=none
}

# What a view of 1600 pixels asks for: every sample, or above five minutes a thousand values for each pixel column.
steps() { # SECONDS
  echo $(($1 < 300 ? 1 : $1 * 48000 / 1600000))
}
read_view() { # PROGRAM FILE SECONDS
  inner "$1" read "$2" 0 "$3" "$(steps "$3")"
}
# As few as a picture of the whole needs.
read_overview() { # PROGRAM FILE SECONDS
  inner "$1" read "$2" 0 "$3" $(($3 * 48000 / 3200))
}

echo "| task | 1 min | 10 min | 1 h | 3 h | exponent |"
echo "|---|---|---|---|---|---|"
row "\`cat\` of the file" plain cat SECONDS.wav
row "left channel" whole "$task" left SECONDS.wav out.wav
row "all of it mixed to mono" whole "$task" mix SECONDS.wav out.wav SECONDS
row "to 44.1 kHz mono float" whole "$task" convert SECONDS.wav out.wav 44100
row "as many bytes written by \`dd\`" write_only SECONDS 176400
row "MP3 to 96 kHz float" whole "$task" decode SECONDS.mp3 out.wav 96000
row "as many bytes written by \`dd\`" write_only SECONDS 768000
row "samples for a view of 1600 pixels" read_view "$task" SECONDS.wav SECONDS
row "3,200 samples of all of it" read_overview "$task" SECONDS.wav SECONDS
row "a ready copy opened and shown" inner "$session" "$window" open SECONDS.wav
row "longest time without an answer while exporting" inner "$session" "$window" gap SECONDS.wav out.wav

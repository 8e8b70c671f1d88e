#!/usr/bin/env bash
# Makes the files with which the fuzzers begin: short ones of every format that they are about, the same bytes each
# time: no dither, and no random numbers in the containers.
#
#   scripts/make-seeds.sh FOLDER      WAV files go into FOLDER/wav, and they and all others into FOLDER/audio
set -euo pipefail

folder=$1
mkdir -p "$folder/wav" "$folder/audio"

tone() { # FILE RATE CHANNELS OPTION...
  local file=$1 rate=$2 channels=$3
  shift 3
  sox -D -n -r "$rate" -c "$channels" "$@" "$file" synth 0.03 sine 440 vol 0.4
}
for channels in 1 2; do
  tone "$folder/wav/16-bit-$channels.wav" 8000 $channels -b 16
  tone "$folder/wav/24-bit-$channels.wav" 8000 $channels -b 24
  tone "$folder/wav/32-bit-$channels.wav" 8000 $channels -b 32
  tone "$folder/wav/float-$channels.wav" 8000 $channels -b 32 -e floating-point
done
tone "$folder/wav/three-channels.wav" 8000 3 -b 16
tone "$folder/wav/8-bit.wav" 8000 1 -b 8
tone "$folder/wav/mulaw.wav" 8000 1 -e mu-law

convert() { # FILE OPTION...
  local file=$1
  shift
  ffmpeg -v error -nostdin -y -i "$folder/wav/16-bit-2.wav" -fflags +bitexact -flags +bitexact "$@" "$folder/$file"
}
convert wav/rf64.wav -rf64 always
convert wav/tagged.wav -metadata title=Tone -metadata artist=Nobody
convert wav/extensible.wav -c:a pcm_s24le -ar 48000
convert audio/tone.flac
convert audio/tone.m4a -c:a aac
convert audio/tone.ogg -c:a libvorbis -ar 44100
convert audio/tone.opus.ogg -c:a libopus -ar 48000
convert audio/tone.aiff
convert audio/tone.au
convert audio/tone.wv
convert audio/tone.mka -c:a pcm_s16le
convert audio/tone.ac3 -ar 48000
lame --quiet "$folder/wav/16-bit-2.wav" "$folder/audio/tone.mp3"
cp "$folder"/wav/*.wav "$folder/audio"

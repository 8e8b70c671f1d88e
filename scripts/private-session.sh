#!/usr/bin/env bash
# Runs a command under a virtual display and a sound server of its own, with two silent outputs named "one" and
# "two". Nothing of the user's session is touched, and nothing is left running.
#
#   scripts/private-session.sh COMMAND [ARGUMENT ...]
set -euo pipefail

runtime=$(mktemp -d)
chmod 700 "$runtime"
export XDG_RUNTIME_DIR="$runtime"
export PULSE_RUNTIME_PATH="$runtime/pulse"
export PULSE_SERVER="unix:$runtime/pulse/native"

pulseaudio -n --daemonize=no --exit-idle-time=-1 --log-target=file:"$runtime/pulse.log" \
  --load="module-native-protocol-unix socket=$runtime/pulse/native" \
  --load="module-null-sink sink_name=one" \
  --load="module-null-sink sink_name=two" &
sound_server=$!
clean_up() {
  kill "$sound_server" 2>/dev/null || true
  wait "$sound_server" 2>/dev/null || true
  rm -rf "$runtime"
}
trap clean_up EXIT

for _ in $(seq 100); do
  pactl info >/dev/null 2>&1 && break
  sleep 0.1
done
pactl info >/dev/null || { echo "private-session: the sound server did not start" >&2; exit 1; }

"$(dirname "$0")/private-display.sh" "$@"

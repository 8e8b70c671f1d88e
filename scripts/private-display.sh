#!/usr/bin/env bash
# Runs a command under a virtual display of its own.
#
#   scripts/private-display.sh COMMAND [ARGUMENT ...]
set -euo pipefail

export QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY DISPLAY

# Without -noreset the display starts again whenever its last window program ends, and refuses one that comes just then.
exec xvfb-run --auto-servernum --server-args="-screen 0 1600x900x24 -noreset" "$@"

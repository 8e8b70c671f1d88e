#!/usr/bin/env bash
# Runs a test that uses Qt Multimedia, and once more if it fails: on a busy machine Qt's media backend loses races of its
# own now and then. scripts/test.sh tells at its end which tests needed that.
#
#   scripts/try-twice.sh SECONDS PROGRAM [ARGUMENT ...]     the first try ends after SECONDS at the latest
set -uo pipefail

seconds=$1
shift
timeout --kill-after=5 "$seconds" "$@"
result=$?
[ "$result" -ne 0 ] || exit 0
echo "SECOND TRY of $(basename "$1"): the first one ended with $result"
exec "$@"

#!/usr/bin/env bash
# Installs what building, running and testing need on Debian 12. Safe to call again: it asks apt only for
# what is missing, so later runs need neither the network nor root.
set -euo pipefail

build_packages=(
  g++ cmake ninja-build pkg-config git
  qt6-base-dev libqt6opengl6-dev qt6-multimedia-dev qt6-svg-dev
  libgl-dev libegl-dev
  libavformat-dev libavcodec-dev libswresample-dev libavutil-dev
)
run_packages=(
  libgl1-mesa-dri libegl1 libqt6svg6 qt6-qpa-plugins fonts-dejavu-core
  xvfb xauth pulseaudio pulseaudio-utils
)
test_packages=(
  clang-14 clang-format-14 clang-tidy-14 libclang-rt-14-dev
  sox lame libsox-fmt-mp3 ffmpeg hyperfine time valgrind
)

missing=()
for package in "${build_packages[@]}" "${run_packages[@]}" "${test_packages[@]}"; do
  state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$state" = installed ] || missing+=("$package")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
echo "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"

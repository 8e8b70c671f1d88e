#!/usr/bin/env bash
# Installs what building, running and testing need on Debian 12 and 13. Safe to call again: it asks apt only for what
# is missing, so later runs need neither the network nor root. On other systems it tells what is needed and goes on.
set -euo pipefail

system=unknown
[ -r /etc/os-release ] && system=$(. /etc/os-release && echo "${ID:-unknown} ${VERSION_CODENAME:-}")

build_packages=(
  g++ cmake ninja-build pkg-config git
  qt6-base-dev qt6-multimedia-dev qt6-svg-dev qt6-l10n-tools
  libgl-dev libegl-dev
  libavformat-dev libavcodec-dev libswresample-dev libavutil-dev libpulse-dev
)
run_packages=(
  libgl1-mesa-dri libegl1 qt6-qpa-plugins qt6-translations-l10n fonts-dejavu-core
  xvfb xauth pulseaudio pulseaudio-utils
)
test_packages=(
  clang clang-format clang-tidy libclang-rt-dev debootstrap
  sox lame libsox-fmt-mp3 ffmpeg hyperfine time valgrind
)

case "$system" in
  'debian bookworm')
    build_packages+=(libqt6opengl6-dev)
    run_packages+=(libqt6svg6)
    ;;
  'debian trixie' | 'debian forky' | 'debian sid')
    # The icons' plugins are a package of their own there: without it every icon is empty.
    run_packages+=(qt6-svg-plugins)
    ;;
  *)
    cat >&2 <<'NEEDED'
setup: this system is neither Debian 12 nor 13, so nothing is installed. Going on with what is here. Needed are
  to build: a C++20 compiler (GCC 12 or Clang 14 at least), CMake 3.25, Ninja, pkg-config, git, the OpenGL and EGL headers,
            Qt 6.4 or later (Base, OpenGL, Multimedia, Svg), FFmpeg 5.1 or later (avformat, avcodec, swresample, avutil),
            libpulse on Linux;
            Qt's lrelease for the translations, and lupdate to bring them up to date
  to run:   Qt's xcb platform, SVG icon and FFmpeg media plugins, OpenGL (Mesa will do), a font,
            Qt's translations for the texts of its dialogs;
            without a display: Xvfb and xauth, PulseAudio with pactl
  to test:  these three, sox with MP3, lame, the ffmpeg program; clang-format 14, clang-tidy, Clang's sanitizer runtime,
            hyperfine, GNU time and valgrind for the checks and benchmarks
NEEDED
    exit 0
    ;;
esac

missing=()
for package in "${build_packages[@]}" "${run_packages[@]}" "${test_packages[@]}"; do
  state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$state" = installed ] || missing+=("$package")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: as root, run: apt-get install ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi
echo "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"

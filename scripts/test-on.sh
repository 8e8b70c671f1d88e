#!/usr/bin/env bash
# Builds and runs every test on another Debian, for example Debian 13 on a Debian 12 machine, as scripts/test.sh does
# here. That system is made by debootstrap in the user's cache folder and used again later; its packages come from
# the mirror that this machine uses. Needs root.
#
#   scripts/test-on.sh [--fresh] SUITE [PRESET [CTEST-ARGUMENT ...]]      SUITE: bookworm, trixie, sid ...
#   scripts/test-on.sh [--fresh] SUITE -- COMMAND [ARGUMENT ...]          runs COMMAND there instead
#
# --fresh throws the system away first.
set -euo pipefail
project=$(cd "$(dirname "$0")/.." && pwd)

fresh=false
if [ "${1:-}" = --fresh ]; then
  fresh=true
  shift
fi
suite=${1:-}
if ! [[ $suite =~ ^[a-z][a-z0-9-]*$ ]]; then
  echo 'usage: scripts/test-on.sh [--fresh] SUITE [PRESET ... | -- COMMAND ...]     SUITE: bookworm, trixie, sid' >&2
  exit 2
fi
shift

command=(scripts/test.sh "$@")
if [ "${1:-}" = -- ]; then
  shift
  command=("$@")
fi

leave_out() {
  echo "test-on: nothing was tested on $suite: $1" >&2
  exit 0
}
[ "$(id -u)" -eq 0 ] || leave_out 'only root can do that'
command -v debootstrap >/dev/null || leave_out 'debootstrap is not installed'

systems=${XDG_CACHE_HOME:-$HOME/.cache}/vantorAudioEngine/systems
root=$systems/$suite
[ "$fresh" = false ] || rm -rf --one-file-system "$root"
if [ ! -d "$root" ]; then
  mirror=$(apt-get indextargets --format '$(ORIGIN) $(LABEL) $(SITE)' 'Created-By: Packages' |
    awk '$1 == "Debian" && $2 == "Debian" && !mirror { mirror = $3 } END { print mirror }')
  [ -n "$mirror" ] || leave_out 'this machine names no mirror of Debian'
  mkdir -p "$systems"
  rm -rf --one-file-system "$root.unfinished"
  echo "test-on: making $root"
  debootstrap --variant=minbase "$suite" "$root.unfinished" "$mirror" >"$root.log" 2>&1 ||
    { tail -n 20 "$root.log" >&2; exit 1; }
  mv "$root.unfinished" "$root"
fi

# Each system has a build folder of its own. All mounts end with the command.
mkdir -p "$root/project" "$project/build/on-$suite"
[ ! -f /etc/resolv.conf ] || cp -L /etc/resolv.conf "$root/etc/resolv.conf"
exec unshare --mount --pid --fork --kill-child bash -euo pipefail -c '
  root=$1 project=$2 suite=$3
  shift 3
  mount --bind "$project" "$root/project"
  mount --bind "$project/build/on-$suite" "$root/project/build"
  mount -t proc proc "$root/proc"
  mount --rbind /sys "$root/sys"
  mount --rbind /dev "$root/dev"
  exec chroot "$root" env -i HOME=/root LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin \
    bash -c "cd /project && exec \"\$@\"" bash "$@"
' bash "$root" "$project" "$suite" "${command[@]}"

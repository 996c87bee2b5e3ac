#!/usr/bin/env bash
# inside.sh: a command in another system, with what every login has in its environment and nothing else, as root.
#
#     packaging/inside.sh ROOT FOLDER COMMAND…    in FOLDER of this system, which is /mnt there
#
# Mounts end with what runs there, however it ends.
set -euo pipefail
root=$(realpath "$1")
folder=$(realpath "$2")
shift 2
cp -L --remove-destination /etc/resolv.conf "$root/etc/resolv.conf"  # the network of today
# shellcheck disable=SC2016  # that shell knows its own names
root=$root folder=$folder exec unshare --mount bash -euc '
  mount -t proc proc "$root/proc"
  mount -t devpts -o newinstance,ptmxmode=666 devpts "$root/dev/pts"
  mount --bind "$folder" "$root/mnt"
  exec chroot "$root" env -i -C /mnt HOME=/root LC_ALL=C.UTF-8 \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin "$@"' inside "$@"

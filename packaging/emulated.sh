#!/usr/bin/env bash
# emulated.sh: a command, as root, while this machine runs programs of another processor under QEMU.
#
#     packaging/emulated.sh ARCHITECTURE ROOT COMMAND…    by the qemu-user-static that is installed in ROOT
#
# The kernel holds QEMU open (F): systems of the other processor need not have it. What the kernel is told goes with the
# command, however that ends.
set -euo pipefail
processor=$(dpkg-architecture -a"$1" -qDEB_HOST_GNU_CPU 2>/dev/null)
root=$(realpath "$2")
shift 2
field() { sed -n "s/^$1 //p" "$root/usr/share/binfmts/qemu-$processor"; }
formats=/proc/sys/fs/binfmt_misc
entry=stopngo-$processor-$$
line=":$entry:M:$(field offset):$(field magic):$(field mask):$root$(field interpreter):PF"
# shellcheck disable=SC2016  # that shell knows its own names
formats=$formats entry=$entry line=$line exec unshare --mount bash -euc '
  mountpoint -q "$formats" || mount -t binfmt_misc binfmt_misc "$formats"
  printf "%s\n" "$line" >"$formats/register"
  trap "echo -1 >$formats/$entry" EXIT
  "$@"' emulated "$@"

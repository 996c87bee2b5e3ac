#!/usr/bin/env bash
# bare_system.sh: a Debian 12 with nothing but apt, as root: there whole, or not at all.
#
#     packaging/bare_system.sh ROOT ARCHITECTURES [PACKAGES]    comma-separated; the first is its own, of others it takes
#                                                               libraries too; PACKAGES it has from the start
set -euo pipefail
part=$1.part
remove() { rm -rf --one-file-system "$part" "$part.log"; }
trap remove EXIT
remove
echo "packages: making a Debian 12 for $2" >&2
# What runs another processor's programs is not looked for: it is packaging/emulated.sh.
unshare --mount mmdebstrap --variant=apt --skip=check/qemu --architectures="$2" ${3:+--include="$3"} bookworm "$part" \
  >"$part.log" 2>&1 || { tail "$part.log" >&2; exit 1; }
mv "$part" "$1"

#!/usr/bin/env bash
# on_bare_system.sh: tries the packages of an architecture on a Debian 12 that has just been made, and of this machine's the
# service as well, as root.
#
#     packaging/on_bare_system.sh ARCHITECTURE
set -euo pipefail
cd "$(dirname "$0")/.."
scratch=build/packages/$1/scratch
remove() { rm -rf --one-file-system "$scratch"; }
trap remove EXIT
remove
mkdir -p "$scratch/packages"
cp build/packages/*_"$1".deb packaging/try_packages.sh "$scratch/packages"
packaging/bare_system.sh "$scratch/root" "$1"
packaging/inside.sh "$scratch/root" "$scratch/packages" bash try_packages.sh
# The service on what runs as fast as a device.
[ "$1" != "$(dpkg --print-architecture)" ] || scripts/service "$scratch/root"

#!/usr/bin/env bash
# make_packages.sh: the packages of an architecture, in build/packages, on the system that builds them.
#
#     packaging/make_packages.sh ARCHITECTURE [look]    look: lintian, the module's symbols and a second making's bytes too
#
# STOPNGO_COMMIT in the environment is the commit that is built.
set -euo pipefail
cd "$(dirname "$0")/.."
architecture=$1
look=${2:-}
packages=build/packages
build=$packages/$architecture
version=$(sed -n 's/^project(zetstopngo VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
names=(libzetstopngo1 libzetstopngo-dev stopngo gstreamer1.0-zetstopngo)
files=("${names[@]/%/_${version}_$architecture.deb}")
module=${files[0]}

# Times in the packages are that of the change log.
SOURCE_DATE_EPOCH=$(date -d "$(sed -n 's/^ -- .*>  //p' packaging/changelog.in)" +%s)
export SOURCE_DATE_EPOCH
# DEB_HOST_…, by which dpkg's programs go as well. It warns of a compiler that is this machine's.
settings=$(dpkg-architecture -a"$architecture" -s 2>/dev/null)
eval "$settings"
arguments=(
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_INSTALL_LIBDIR="lib/$DEB_HOST_MULTIARCH"
  -DCPACK_DEBIAN_PACKAGE_ARCHITECTURE="$architecture"
  -DSTOPNGO_BUILD_TOOLS=ON -DSTOPNGO_BUILD_TESTS=OFF -DSTOPNGO_COMMIT="${STOPNGO_COMMIT:-}"
)
if [ "$DEB_HOST_ARCH" != "$DEB_BUILD_ARCH" ]; then
  # The processor's own libraries are where it looks for them.
  arguments+=(-DCMAKE_TOOLCHAIN_FILE="cmake/$DEB_HOST_GNU_CPU.cmake"
    -DCMAKE_CROSSCOMPILING_EMULATOR="qemu-$DEB_HOST_GNU_CPU-static")
fi

make() {
  rm -f "${files[@]/#/$packages/}"
  (cd "$build" && cpack >cpack.log 2>&1) || { cat "$build/cpack.log" >&2; exit 1; }
  mv "${files[@]/#/$build/}" "$packages"
}

cmake -S . -B "$build" -G Ninja --no-warn-unused-cli "${arguments[@]}" >/dev/null
cmake --build "$build" -j "$(nproc)" -- --quiet
make
for file in "${files[@]}"; do
  echo "== packages: $file"
  dpkg-deb --contents "$packages/$file" | awk '$1 !~ /^d/ { print "   ", $6, $7, $8 }'
done
[ -n "$look" ] || exit 0

scratch=$PWD/$build/scratch
remove() { rm -rf "$scratch"; }
trap remove EXIT
remove
mkdir -p "$scratch/first" "$scratch/module"
mv "${files[@]/#/$packages/}" "$scratch/first"
make
for file in "${files[@]}"; do
  cmp "$scratch/first/$file" "$packages/$file" || { echo "packages: $file differs from making to making" >&2; exit 1; }
done
lintian --allow-root --fail-on error,warning "${files[@]/#/$packages/}"

# Names that came or went.
dpkg-deb --extract "$packages/$module" "$scratch/module"
(cd "$scratch/module" && dpkg-gensymbols -c4 -plibzetstopngo1 "-v$version" "-I$OLDPWD/packaging/symbols" -P. \
  -e"$(find usr/lib -name 'libzetstopngo.so.*.*')" -O/dev/null)
echo "== packages: of $architecture, lintian and symbols have nothing to say; made twice, they are the same bytes"

#!/usr/bin/env bash
# install_test.sh: what `cmake --install` gives is enough for a host: found through pkg-config and through
# CMake, compiled, linked, run; and the installed command finds the installed module and weights.
#
#     tests/install_test.sh BUILD-FOLDER
set -euo pipefail
root=$(realpath "$(mktemp -d)")
trap 'rm -rf "$root"' EXIT
cmake --install "$1" --prefix "$root/usr" >/dev/null

headers=$(cd "$root/usr/include" && echo *)
[ "$headers" = vel_stopngo.h ] || { echo "install_test: installed headers are $headers" >&2; exit 1; }

cat >"$root/host.c" <<'END'
#include <vel_stopngo.h>
int main(void) { return vel_stopngo_get_ctx_size() == vel_stopngo.ctxsize ? 0 : 1; }
END
export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$root" -name zetstopngo.pc)")
library=$(realpath "$(pkg-config --variable=libdir zetstopngo)")
# shellcheck disable=SC2046  # pkg-config's answer is several words
cc -std=c99 "$root/host.c" -o "$root/host" $(pkg-config --cflags --libs zetstopngo)
LD_LIBRARY_PATH=$library "$root/host"

cat >"$root/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(host LANGUAGES C)
find_package(zetstopngo 1 REQUIRED)
add_executable(host host.c)
target_link_libraries(host PRIVATE zetstopngo::zetstopngo)
END
cmake -G Ninja -S "$root" -B "$root/build" -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$root/build" >/dev/null
"$root/build/host"

selftest=$root/usr/bin/zetstopngo-selftest
"$selftest" >"$root/log" || { echo "install_test: the self-test failed" >&2; cat "$root/log" >&2; exit 1; }
grep -q "^module   $library/" "$root/log" || { echo "install_test: the self-test asked another module" >&2; exit 1; }
for argument in "$root/none.so" "$root/usr/bin/zetstopngo-selftest" --unknown; do
  code=0
  "$selftest" "$argument" >/dev/null 2>&1 || code=$?
  [ "$code" = 2 ] || { echo "install_test: the self-test took $argument, exit code $code" >&2; exit 1; }
done

run() { head -c 3840000 /dev/zero | "$root/usr/bin/stopngo" run - --raw 800x480 --rate 0 "$@"; }
run --no-weights >"$root/log"
grep -q 10 "$root/log" || { echo "install_test: the installed command did not run" >&2; exit 1; }
"$root/usr/bin/stopngo" --version | grep -q "^module $library/" ||
  { echo "install_test: the installed command did not load the installed module" >&2; exit 1; }
if [ -f "$(dirname "$0")/../weights/default.bin" ]; then
  run >"$root/log" || { echo "install_test: the installed command did not find its weights" >&2; exit 1; }
fi
echo "install_test: passed"

#!/usr/bin/env bash
# install_test.sh: what `cmake --install` gives is enough for a host: found through pkg-config and through
# CMake, compiled, linked, run; and the installed command finds the installed module and weights.
#
#     tests/install_test.sh BUILD-FOLDER
#
# Of a build without the command, which may be another processor's, only what is installed and found is looked at.
set -euo pipefail
root=$(realpath "$(mktemp -d)")
trap 'rm -rf "$root"' EXIT
build=$(realpath "$1")
source=$(realpath "$(dirname "$0")/..")
cmake --install "$build" --prefix "$root/usr" >/dev/null

headers=$(cd "$root/usr/include" && echo *)
[ "$headers" = vel_stopngo.h ] || { echo "install_test: installed headers are $headers" >&2; exit 1; }

export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$root" -name zetstopngo.pc)")
library=$(realpath "$(pkg-config --variable=libdir zetstopngo)")
weights=$(realpath "$(pkg-config --variable=weights zetstopngo)")
for file in default.bin default.bin.json; do
  cmp "$source/weights/$file" "$(pkg-config --variable=weightsdir zetstopngo)/$file"
done
[ -f "$library/libzetstopngo.so.1" ] || { echo "install_test: no module in $library" >&2; exit 1; }
if [ ! -e "$root/usr/bin/stopngo" ]; then
  echo "install_test: passed, for a build without the command"
  exit
fi

cat >"$root/host.c" <<'END'
#include <vel_stopngo.h>
int main(void) { return vel_stopngo_get_ctx_size() == vel_stopngo.ctxsize ? 0 : 1; }
END
# shellcheck disable=SC2046  # pkg-config's answer is several words
cc -std=c99 "$root/host.c" -o "$root/host" $(pkg-config --cflags --libs zetstopngo)
LD_LIBRARY_PATH=$library "$root/host"

# The host that is to be copied, as its first lines say, where the installed weights are.
# shellcheck disable=SC2046
cc -std=c99 "$source/host/examples/host.c" -o "$root/example" $(pkg-config --cflags zetstopngo) -ldl
(cd "$(dirname "$weights")" && "$build/departure" 30 832 | LD_LIBRARY_PATH=$library "$root/example" 800 480 832 30) \
  >"$root/log"
grep -q "(alarm)" "$root/log" || { echo "install_test: the example saw no departure" >&2; exit 1; }

cat >"$root/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(host LANGUAGES C)
find_package(zetstopngo 1 REQUIRED)
file(REAL_PATH "${zetstopngo_WEIGHTS}" weights)
if(NOT weights STREQUAL WANTED)
  message(FATAL_ERROR "${weights} is not ${WANTED}")
endif()
add_executable(host host.c)
target_link_libraries(host PRIVATE zetstopngo::zetstopngo)
END
cmake -G Ninja -S "$root" -B "$root/build" -DCMAKE_PREFIX_PATH="$root/usr" -DWANTED="$weights" >/dev/null
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

for file in bash-completion/completions/stopngo zsh/vendor-completions/_stopngo \
  fish/vendor_completions.d/stopngo.fish; do
  [ -s "$root/usr/share/$file" ] || { echo "install_test: no $file" >&2; exit 1; }
done
if command -v scdoc >/dev/null && [ ! -s "$root/usr/share/man/man1/stopngo-run.1" ]; then
  echo "install_test: no man pages" >&2
  exit 1
fi

run() { head -c 3840000 /dev/zero | "$root/usr/bin/stopngo" run - --raw 800x480 --rate 0 "$@"; }
run --no-weights >"$root/log"
grep -q 10 "$root/log" || { echo "install_test: the installed command did not run" >&2; exit 1; }
"$root/usr/bin/stopngo" --version | grep -q "^module $library/" ||
  { echo "install_test: the installed command did not load the installed module" >&2; exit 1; }
run >"$root/log" || { echo "install_test: the installed command did not find its weights" >&2; exit 1; }

# Where the element was built: the installed one finds the installed module and weights, however it is found itself.
plugins=$library/gstreamer-1.0
if [ -d "$plugins" ]; then
  GST_PLUGIN_PATH=$plugins GST_REGISTRY=$root/registry timeout 60 gst-launch-1.0 videotestsrc num-buffers=30 ! \
    video/x-raw,format=NV12,width=800,height=480,framerate=30/1 ! zetstopngo ! fakesink >"$root/log" 2>&1 ||
    { echo "install_test: the installed element did not run" >&2; cat "$root/log" >&2; exit 1; }
fi
echo "install_test: passed"

#!/usr/bin/env bash
# try_packages.sh: on a bare Debian, as root: the packages beside this script are installed, used and removed.
set -euo pipefail
cd "$(dirname "$0")"
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
apt_get() { apt-get -qq -o Dpkg::Use-Pty=0 --no-install-recommends "$@" >apt.log 2>&1 || { tail apt.log >&2; exit 1; }; }
fail() { echo "try_packages: $*" >&2; exit 1; }

# What others bring has come before, so that all that comes and goes is ours.
apt_get update
# shellcheck disable=SC2046  # many packages
apt_get install gcc libc6-dev pkg-config cmake ninja-build man-db gstreamer1.0-tools gstreamer1.0-plugins-base \
  $(for file in *.deb; do dpkg-deb -f "$file" Depends; echo ,; done | tr ',' '\n' | sed 's/(.*//; /stopngo/d')
entries() { find /bin /etc /lib* /opt /sbin /usr /var/lib/zet* /var/lib/stop* ! -name ld.so.cache 2>/dev/null | sort || true; }
entries >before

apt_get install ./*.deb
ldconfig -p | grep -q libzetstopngo.so.1 || fail "the loader does not know the module"
stopngo --version
zetstopngo-selftest >selftest.log || fail "the self-test: $(cat selftest.log)"
stopngo synth clip.y4m --length 8 --departure 4 >/dev/null
stopngo run clip.y4m | tee run.log
grep -q alarm run.log || fail "no alarm of a departure"
gst-launch-1.0 -m videotestsrc num-buffers=60 ! video/x-raw,format=GRAY8,width=800,height=480,framerate=30/1 ! \
  zetstopngo silent=false ! fakesink >pipeline.log 2>&1 || fail "the pipeline: $(cat pipeline.log)"
[ "$(grep -c 'stopngo, decision' pipeline.log)" = 12 ] || fail "the element tells of $(grep -c 'stopngo, decision' pipeline.log) frames"
for page in stopngo.1 stopngo-run.1 stopngo.toml.5 zetstopngo.3; do
  man -w "${page##*.}" "${page%.*}" >/dev/null || fail "no page $page"
done
bash -c 'source /usr/share/bash-completion/completions/stopngo; COMP_WORDS=(stopngo wei); COMP_CWORD=1; _stopngo
  [ "${COMPREPLY[*]}" = weights ]' || fail "no completion"

printf '#include <vel_stopngo.h>\nint main(void) { return vel_stopngo_get_ctx_size() == vel_stopngo.ctxsize ? 0 : 1; }\n' >use.c
# shellcheck disable=SC2046  # pkg-config's answer is several words
gcc use.c -o use $(pkg-config --cflags --libs zetstopngo)
./use || fail "the consumer by pkg-config"
[ -f "$(pkg-config --variable=weights zetstopngo)" ] || fail "pkg-config knows no weights"
cat >CMakeLists.txt <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(use LANGUAGES C)
find_package(zetstopngo 1 REQUIRED)
file(SIZE "${zetstopngo_WEIGHTS}" weights)
add_executable(use use.c)
target_link_libraries(use PRIVATE zetstopngo::zetstopngo)
CMAKE
cmake -G Ninja -S . -B with-cmake >/dev/null
cmake --build with-cmake >/dev/null
with-cmake/use || fail "the consumer by CMake"

apt_get purge gstreamer1.0-zetstopngo libzetstopngo1 libzetstopngo-dev stopngo
entries >after
diff before after || fail "this is left, or gone, after removal"
if compgen -G '/var/lib/dpkg/info/*stopngo*' >/dev/null; then fail "dpkg still knows them"; fi
echo "== packages: installed, used and removed on Debian $(cat /etc/debian_version): nothing is left"

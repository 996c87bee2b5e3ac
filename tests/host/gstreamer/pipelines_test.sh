#!/usr/bin/env bash
# pipelines_test.sh: the plugin in pipelines of gst-launch-1.0 decides as `stopngo run` does, frame by frame.
#
#     pipelines_test.sh STOPNGO PLUGIN-FOLDER
set -euo pipefail
stopngo=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export GST_PLUGIN_PATH=$2 GST_REGISTRY=$folder/registry LC_ALL=C
cd "$folder"
failures=0

fail() {
  echo "pipelines_test: $*" >&2
  failures=$((failures + 1))
}

# scene NAME OPTION…: a rendered scene as NAME.y4m, and as NAME.raw with chroma of 128: I420, YV12, NV12 and NV21 alike.
scene() {
  "$stopngo" synth "$1.y4m" "${@:2}" >synth.log 2>&1 || fail "$(cat synth.log)"
  python3 - "$1.y4m" "$1.raw" <<'END'
import re, sys
with open(sys.argv[1], "rb") as y4m, open(sys.argv[2], "wb") as raw:
    width, height = map(int, re.search(rb" W(\d+) H(\d+) ", y4m.readline()).groups())
    while y4m.readline():
        raw.write(y4m.read(width * height) + b"\x80" * (width * height // 2))
END
}

# parsed FORMAT NAME: its frames in a pipeline.
parsed() {
  local size
  size=$(head -1 "$2.y4m" | sed -E 's/.* W([0-9]+) H([0-9]+) F([0-9]+):([0-9]+) .*/width=\1 height=\2 framerate=\3\/\4/')
  eval "local ${size/framerate=*/}"
  echo "filesrc location=$2.raw ! rawvideoparse format=$1 $size frame-size=$((width * height * 3 / 2))"
}

launch() { timeout 120 gst-launch-1.0 "$@"; }

# told: the messages of a run as frame, alarm counter, decision, score and whether a gate is closed.
told() {
  sed -nE 's/.*: stopngo, decision=\(int\)([0-9]+), changed=[^,]*, score=\(double\)([^,]*), counter=\(int\)([0-9]+), gate=\(string\)(.*), timestamp=.*frame=\(guint64\)([0-9]+);.*/\5 \3 \1 \2 \4/p' |
    awk '{ printf "%d %d %d %.9g %s\n", $1, $2, $3, $4, $5 == "\"\"" ? "-" : "closed" }'
}

traced() { awk -F'\t' '!/^(frame|#)/ { printf "%d %d %d %s %s\n", $1, $5, $7, $3, $10 == "-" ? "-" : "closed" }' "$1"; }

# decides NAME FORMAT BETWEEN [ARGUMENT…]: the pipeline tells what the command does with the arguments.
decides() {
  "$stopngo" run "$1.y4m" --trace trace.tsv "${@:4}" >run.log 2>&1 || fail "$(cat run.log)"
  traced trace.tsv >expected
  # shellcheck disable=SC2046,SC2086  # a pipeline is several words
  launch -m $(parsed "$2" "$1") ! $3 zetstopngo silent=false ! fakesink >out 2>&1 || fail "$2 $3: $(cat out)"
  told <out >found
  cmp -s expected found || fail "$1 $2 $3"$'\n'"$(diff expected found | head -5)"
}

for rate in 25 30 29.97 15; do
  scene "scene$rate" --length 7 --departure 3 --rate "$rate"
  decides "scene$rate" gray8 ""
done
grep -q '^[0-9]* [0-9]* 1 ' expected || fail "no alarm: nothing is tested"
for format in nv12 nv21 i420 yv12; do
  decides scene25 "$format" ""
done
for format in YUY2 UYVY Y42B Y444 NV16; do
  decides scene25 nv12 "videoconvert ! video/x-raw,format=$format !"
done
for size in 1920x1080 1280x720; do
  scene "scene$size" --size "$size" --length 4 --departure 1
  decides "scene$size" nv12 "" --original
done

# What comes out is what went in, and nothing of ours lies between it.
bytes() {
  # shellcheck disable=SC2046,SC2086
  launch -q $(parsed i420 scene25) ! $1 fdsink 2>err | sha256sum
}
[ "$(bytes "")" = "$(bytes "zetstopngo silent=false !")" ] || fail "the stream is changed"
[ "$(bytes "")" != "$(bytes "zetstopngo draw=region !")" ] || fail "nothing is drawn"

# shellcheck disable=SC2046
GST_TRACERS=leaks GST_DEBUG=GST_TRACER:7 launch $(parsed i420 scene25) ! tee name=t ! queue ! zetstopngo silent=false ! \
  fakesink t. ! queue ! fakesink >out 2>&1 || fail "$(cat out)"
grep -q "GST_TRACER" out || fail "the tracer of leaks says nothing at all"
# It tells of its own formats, too.
grep -E "object-(alive|refings), " out | grep -v "%s" >&2 && fail "objects are left over"

# refuses WORDS PROPERTY…: said before the first frame, and the end.
refuses() {
  # shellcheck disable=SC2046
  launch $(parsed gray8 scene25) ! zetstopngo "${@:2}" ! fakesink >out 2>&1 && fail "${*:2} runs"
  grep -qF -- "$1" out || fail "'$1' is not what ${*:2} gives: $(cat out)"
}
refuses "outside-frame" roi-x=700
refuses "/nowhere.bin" weights=/nowhere.bin
refuses "gates: 'garden'" gates=garden
STOPNGO_MODULE=/nowhere.so refuses "/nowhere.so"

[ "$failures" = 0 ] && echo "pipelines_test: passed"

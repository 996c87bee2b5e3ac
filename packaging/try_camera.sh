#!/bin/bash
# try_camera.sh: the first process of a machine with nothing but the packages and a camera of the driver vivid: the command
# and the element watch it, it is held by another one, goes away, comes back and fails.
set -euo pipefail
export PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8
mount -t proc proc /proc
mount -t sysfs sys /sys
mount -t devtmpfs dev /dev
mount -t tmpfs tmp /tmp
exec >/dev/ttyS0 2>&1 </dev/null
trap 'echo o >/proc/sysrq-trigger; sleep 60' EXIT
cd /tmp

told() { echo "== camera: $*"; }
fail() {
  cat said told.txt || true
  echo "try_camera: $*"
  exit 1
}
# has FILTER: what jq makes of the status of the camera.
has() { jq -e ".inputs[0] | $1" status.json >/dev/null; }
figures() { jq -c '.inputs[0] | {frames, handed_over, dropped, age_ms, troubles, reconnects}' status.json; }
# until_so SECONDS COMMAND…: that it comes to be.
until_so() {
  local end=$((SECONDS + $1))
  until "${@:2}" 2>/dev/null; do
    [ $SECONDS -lt $end ] || fail "never came to be: ${*:2}"
    sleep 0.2
  done
}
watch() {
  rm -f status.json
  stopngo run /dev/video0 --silence 4 --status status.json "$@" >told.txt 2>said &
  run=$!
}
end() {
  local code=0
  kill -INT $run
  wait $run || code=$?
  [ $code = 130 ] || fail "ends with $code"
}

modprobe vivid n_devs=1 num_inputs=1 input_types=0  # a webcam
until_so 10 test -c /dev/video0
stopngo check /dev/video0 || fail "check of a camera"

watch --size 640x360 --fps 15
until_so 60 has '.frames > 100 and .handed_over > 30'
busy=0
stopngo run /dev/video0 --retries 0 >busy.txt 2>&1 || busy=$?
[ $busy = 1 ] && grep -q 'Device or resource busy' busy.txt || fail "a camera that another one has: $busy, $(cat busy.txt)"
told "640 x 360: $(figures)"

v4l2-ctl -d /dev/video0 -c disconnect=1
until_so 30 has '.reconnects == 1 and .state == "running"'
driver=/sys/bus/platform/drivers/vivid
echo vivid.0 >$driver/unbind
until_so 30 has '.state == "waiting" and (.last_trouble | endswith("No such file or directory"))'
echo vivid.0 >$driver/bind
until_so 60 has '.reconnects == 2 and .state == "running"'
v4l2-ctl -d /dev/video0 -c inject_fatal_streaming_error=1
until_so 30 has '.reconnects == 3 and .state == "running"'
frames=$(jq '.inputs[0].frames' status.json)
until_so 60 has ".frames > $frames + 30"
told "let go, taken away, brought back, and failing: $(figures)"
end

watch --size 777x333 --fps 1000
until_so 60 has '.frames > 50'
told "what it cannot give: $(figures)"
end

for caps in format=YUY2,width=640,height=360,framerate=15/1 format=NV12,width=1280,height=720; do
  gst-launch-1.0 -m v4l2src device=/dev/video0 num-buffers=45 ! "video/x-raw,$caps" ! zetstopngo silent=false ! fakesink \
    >told.txt 2>said || fail "a pipeline of $caps"
  frames=$(grep -c 'stopngo, decision' told.txt)
  [ "$frames" -ge 10 ] || fail "a pipeline of $caps: $frames frames handed over"
  told "a pipeline of $caps: $frames frames handed over"
done
told "passed"

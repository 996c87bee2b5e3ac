#!/usr/bin/env bash
# rtsp_test.sh: stopngo run on a network camera that goes away and comes back.
#
#     rtsp_test.sh STOPNGO
. "$(dirname "$0")/begin.sh"
port=$((20000 + RANDOM % 10000))

# Of Debian: GObject's bindings are not in every other Python.
serve() {
  /usr/bin/python3 "$here/rtsp_server.py" "$port" >server.log 2>&1 &
  server=$!
  for _ in $(seq 200); do
    grep -q ready server.log && return
    sleep 0.05
  done
  cat server.log >&2
  exit 1
}

until_status() {
  for _ in $(seq 1200); do
    [ -f status ] && jq -e "$1" <status >/dev/null && return
    sleep 0.05
  done
  echo "rtsp_test: never came to be: $1" >&2
  cat status said >&2
  exit 1
}

serve
"$stopngo" run "rtsp://127.0.0.1:$port/street" --silence 2 --json --status status >told 2>said &
run=$!
until_status '.inputs[0].handed_over >= 6'
kill -KILL "$server"
until_status '.inputs[0].troubles >= 1'
serve
until_status '.inputs[0].reconnects >= 1 and .inputs[0].handed_over >= 12'
kill -INT "$run"
code=0
wait "$run" || code=$?
[ "$code" = 130 ]
grep -q 'opened again' said
jq -e '.inputs[0] | .state == "ended" and .refused == 0 and .frames >= 20' <status >/dev/null
echo "rtsp_test: $(jq -c '.inputs[0] | {frames, handed_over, dropped, age_ms, reconnects, troubles}' <status)"

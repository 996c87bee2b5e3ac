#!/usr/bin/env bash
# try_service.sh: on a Debian whose first process is systemd, as root: the service of the packages that are installed is
# started on a recording and on a stream, and everything that docs/deploying.md said of it is done to it.
set -euo pipefail
exec 2>&1
cd "$(dirname "$0")"
unit=stopngo@front
drop_ins=/etc/systemd/system/$unit.service.d
status=/run/stopngo/front/status.json
state=/var/lib/stopngo/front
told() { echo "== service: $*"; }
fail() {
  journalctl -u $unit -o short-precise -n 40 --no-pager
  echo "try_service: $*"
  exit 1
}
trap 'fail "line $LINENO: $BASH_COMMAND"' ERR
# is PROPERTY VALUE…: what systemd knows of the unit.
is() {
  for (( ; $#; )); do
    [ "$(systemctl show -P "$1" $unit)" = "$2" ] || return
    shift 2
  done
}
# has FILTER: what jq makes of the status of the input.
has() { jq -e ".inputs[0] | $1" $status >/dev/null; }
# said SINCE TEXT: a line of the journal from a time on, or from its beginning.
said() { journalctl -u $unit -o cat --no-pager ${1:+--since "$1"} | grep -F -- "$2" >/dev/null; }
now() { sleep 1.1; date '+%F %T'; }  # a second that nothing was said in
# until_so SECONDS COMMAND…: that it comes to be.
until_so() {
  local end=$((SECONDS + $1))
  until "${@:2}" 2>/dev/null; do
    [ $SECONDS -lt $end ] || fail "never came to be: ${*:2}"
    sleep 0.1
  done
}
options() { printf 'INPUT=%s\nOPTIONS=--config /etc/stopngo/front.toml %s\n' "$1" "$2" >/etc/stopngo/front.env; }
drop_in() { mkdir -p $drop_ins; cat >"$drop_ins/$1.conf"; systemctl daemon-reload; }

mkdir /etc/stopngo
printf 'rate = 6\n' >/etc/stopngo/front.toml
cat >/usr/local/bin/ring <<'RING'
#!/bin/bash
echo "ring: $# $1 $STOPNGO_INPUT, for user $(id -u)"
jq . >"$STATE_DIRECTORY/rung.json"
touch /etc/rung || chown root "$STATE_DIRECTORY/rung.json" || echo "ring: both refused, and goes on"
RING
chmod +x /usr/local/bin/ring
(cd /srv && stopngo synth drive.y4m --length 8 --departure 4 >/dev/null &&
  ffmpeg -loglevel error -i drive.y4m -c:v libx264 -preset ultrafast -g 25 drive.mkv)

options "/srv/drive.mkv" "--live --clips $state --clips-after 1 --on-alarm \"/usr/local/bin/ring --twice\""
systemctl start $unit || fail "does not start"
is ActiveState active || fail "is not active once it has started"
until_so 5 has '.state == "running" and .handed_over > 6'  # so that the status has been replaced
systemctl status --no-pager $unit | grep -q 'Status: "/srv/drive.mkv: running, decision none"' || fail "no status text"
[ "$(stat -c %u $status)" -ge 61184 ] || fail "no user of its own"  # the first of those that systemd makes
until_so 20 is ActiveState inactive
is Result success NRestarts 0 || fail "the recording's end was none"
journalctl -u $unit -o cat --no-pager | grep '^{' | jq -es 'map(.type) | index("decision") and index("summary")' >/dev/null ||
  fail "no results in the journal"
said '' "ring: 1 --twice /srv/drive.mkv, for user 6" || fail "no command at the alarm"
said '' "ring: both refused, and goes on" || fail "the command may do too much, or is ended for it"
[ "$(jq -r .type $state/rung.json)" = alarm ] || fail "the command got no alarm"
clips=("$state"/*.mkv)
packets=$(jq .packets "${clips[0]%.mkv}.json")
frames=$(ffprobe -v error -count_frames -show_entries stream=nb_read_frames -of csv=p=0 "${clips[0]}")
[ "$frames" = "$packets" ] || fail "of $packets packets of a clip, $frames can be seen"
told "a recording: status, results, command, a clip of $packets packets, end"

# As docs/deploying.md has it, but for the address. It accepts one connection after the other.
systemd-run -q --unit=camera -p Restart=always -p RestartSec=100ms -p StartLimitIntervalSec=0 ffmpeg -loglevel error -re \
  -stream_loop -1 -i /srv/drive.mkv -c copy -f mpegts 'tcp://127.0.0.1:8554?listen'
options "tcp://localhost:8554" ""
systemctl start $unit
until_so 5 has '.last_trouble | endswith("Address family not supported by protocol")'
sed -n '/systemctl edit/,/^$/ { /\[Service\]/,$ s/^ *//p }' deploying.md >documented
grep -v IPAddressAllow documented | drop_in stream
systemctl restart $unit
until_so 5 has '.state == "waiting"'
sleep 3
has '.frames == 0' || fail "an address that is not allowed has been reached"
sed 's|^\(IPAddressAllow=\).*|\1127.0.0.0/8|' documented | drop_in stream
printf '[Service]\nWatchdogSec=3\n' | drop_in watchdog
systemctl restart $unit
until_so 20 has '.frames > 100'
told "a stream: refused, and with the drop-in $(jq -c '.inputs[0] | {frames, handed_over, dropped, troubles}' $status)"

pid=$(systemctl show -P MainPID $unit)
printf 'rate = 5\n' >/etc/stopngo/front.toml
systemctl reload $unit
until_so 5 said '' "goes on with the settings as they are now"
printf 'rat = 5\n' >/etc/stopngo/front.toml
systemctl reload $unit
until_so 5 said '' "the old settings go on: /etc/stopngo/front.toml:1: rat: no such setting"
printf 'rate = 6\n' >/etc/stopngo/front.toml
is MainPID "$pid" NRestarts 0 || fail "a reload has begun it anew"
told "settings read anew, bad ones refused"

since=$(now)
systemctl kill -s KILL $unit
until_so 10 is NRestarts 1
until_so 20 has '.frames > 20'
systemctl kill -s STOP $unit
until_so 20 said "$since" "Failed with result 'watchdog'"
until_so 10 is NRestarts 2
until_so 20 has '.frames > 20'
told "killed and held: begun anew"

since=$(now)
systemctl stop $unit
is Result success ActiveState inactive || fail "has not ended well"
said "$since" '"cut_short":"SIGTERM"' || fail "no last results"
if said "$since" "opened anew"; then fail "the end was told as trouble"; fi
[ ! -e /run/stopngo/front ] || fail "the status has stayed"
[ -f "$state/rung.json" ] || fail "what the command wrote has gone"
told "stopped"

options "tcp://localhost:8554" "--no-such-option"
if systemctl start $unit 2>/dev/null; then fail "starts with wrong usage"; fi
is ActiveState failed NRestarts 0 || fail "wrong usage is tried again"
told "wrong usage ends it"

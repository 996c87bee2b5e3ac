#!/usr/bin/env bash
# broker_test.sh: the lines of docs/deploying.md that take results to a broker of messages and to a metrics file.
#
#     broker_test.sh STOPNGO
. "$(dirname "$0")/begin.sh"
port=$((20000 + RANDOM % 10000))
printf 'listener %d 127.0.0.1\nallow_anonymous true\n' "$port" >broker.conf
PATH=$PATH:/usr/sbin mosquitto -c broker.conf >broker.log 2>&1 &
for _ in $(seq 200); do
  grep -q running broker.log && break
  sleep 0.05
done

"$stopngo" synth drive.y4m --kind departure --seed 3 >/dev/null
mosquitto_sub -h 127.0.0.1 -p "$port" -t stopngo/front -W 60 -C 1 -F '%p' >heard &
listener=$!
sleep 0.5
# From here on as in docs/deploying.md.
"$stopngo" run drive.y4m --json --status status.json |
  mosquitto_pub -h 127.0.0.1 -p "$port" -t stopngo/front -l
wait "$listener"
jq -e '.type == "gate" or .type == "decision"' <heard >/dev/null
jq -r -f "$here/../../packaging/metrics.jq" status.json >stopngo.prom
grep -q '^stopngo_frames_handed_over_total{input="drive.y4m"} [1-9]' stopngo.prom
echo "broker_test: $(cat heard)"

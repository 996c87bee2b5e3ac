#!/usr/bin/env bash
# cluster_test.sh: scripts/cluster on two nodes, one of which is killed at work, makes the folder that one machine makes.
#
#     tests/cluster_test.sh BUILD
#
# Both nodes are this machine, as far as Slurm is concerned two names with a port each.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "$1")
work=$(mktemp -d "${TMPDIR:-/tmp}/stopngo-cluster-XXXXXX")
export SLURM_CONF=$work/slurm.conf STOPNGO=$build/stopngo
daemons=()

finish() {
  for daemon in "${daemons[@]}"; do kill "$daemon" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT

fail() {
  echo "cluster_test: $1" >&2
  tail -n 20 "$work"/*.log >&2
  exit 1
}

# until_so SECONDS COMMAND…: waits for it to hold.
until_so() {
  local left=$1
  shift
  until "$@" >/dev/null 2>&1; do
    left=$((left - 1))
    [ "$left" -gt 0 ] || fail "in vain waited for: $*"
    sleep 1
  done
}

# start NAME COMMAND…: a daemon that is ended with the test.
start() {
  local name=$1
  shift
  "$@" >"$work/$name.log" 2>&1 &
  daemons+=($!)
}

free_ports() {
  python3 - "$1" <<'PYTHON'
import socket, sys
sockets = [socket.socket() for _ in range(int(sys.argv[1]))]
for s in sockets: s.bind(("127.0.0.1", 0))
print(*(s.getsockname()[1] for s in sockets))
PYTHON
}

start_cluster() {
  read -r controller first second < <(free_ports 3)
  mkdir -p "$work"/{state,spool1,spool2}
  head -c 1024 /dev/urandom >"$work/munge.key"
  chmod 400 "$work/munge.key"
  start munged munged --foreground --force --key-file="$work/munge.key" --socket="$work/munge" \
    --pid-file="$work/munged.pid" --log-file="$work/munge.log" --seed-file="$work/munge.seed"
  cat >"$SLURM_CONF" <<CONF
ClusterName=stopngo
SlurmctldHost=$(hostname -s)(127.0.0.1)
SlurmctldPort=$controller
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$work/munge,cred_expire=5
CredType=cred/munge
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool%n
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd%n.pid
ProctrackType=proctrack/pgid
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
MpiDefault=none
ReturnToService=1
SlurmdTimeout=5
SlurmctldTimeout=5
SchedulerParameters=batch_sched_delay=1,sched_interval=1
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
NodeName=1 NodeHostname=$(hostname -s) NodeAddr=127.0.0.1 Port=$first CPUs=1
NodeName=2 NodeHostname=$(hostname -s) NodeAddr=127.0.0.1 Port=$second CPUs=1
PartitionName=all Nodes=1,2 Default=YES MaxTime=INFINITE State=UP
CONF
  until_so 10 munge -n -S "$work/munge"
  start slurmctld slurmctld -D
  start slurmd1 slurmd -D -N 1
  start slurmd2 slurmd -D -N 2
  second_daemon=${daemons[-1]}
  until_so 30 sinfo --noheader --states=idle --nodes=1,2
}

runs_on_second() { [ -n "$(squeue --noheader --states=running --nodelist=2)" ]; }

# The processes that the second node's jobs are, of this cluster and no other.
jobs_of_second() {
  local process
  for process in /proc/[0-9]*; do
    grep -qzx "SLURM_CONF=$SLURM_CONF" "$process/environ" 2>/dev/null || continue
    grep -qzx SLURMD_NODENAME=2 "$process/environ" 2>/dev/null && echo "${process#/proc/}"
  done
}

# As a machine that loses its power: the daemon first, then who would tell how a job ended, then the jobs.
kill_second() {
  local jobs job keeper
  jobs=$(jobs_of_second)
  [ -n "$jobs" ] || fail "the second node has nothing to do"
  kill -9 "$second_daemon"
  wait "$second_daemon" 2>/dev/null || true
  for job in $jobs; do
    keeper=$(ps -o ppid= -p "$job" | tr -d ' ')
    [[ "$(ps -o args= -p "$keeper")" == slurmstepd:* ]] && kill -9 "$keeper"
  done
  for job in $jobs; do kill -9 "$job" 2>/dev/null || true; done
}

start_cluster
manifest=$work/scenes.tsv
printf 'clip\tregion\trate\tlabels\nsynth:mixed:1-70\t-\t-\t-\n' >"$manifest"
scripts/cluster "$manifest" "$work/kept" 4 eval --weights weights/default.bin >"$work/judged" 2>"$work/cluster.log" &
asked=$!
until_so 60 runs_on_second
sleep 1
kill_second
wait "$asked" || fail "scripts/cluster failed"
scontrol show job >"$work/jobs.txt"
grep -q 'Restarts=1' "$work/jobs.txt" || fail "no part was begun again"

"$STOPNGO" features "$manifest" --output "$work/alone" >/dev/null
mapfile -t files < <(cd "$work/alone" && ls)
[ "${#files[@]}" -ge 4 ] || fail "a part had nothing to do"
[ "$(cd "$work/kept" && ls)" = "$(cd "$work/alone" && ls)" ] || fail "other files"
for file in "${files[@]}"; do cmp "$work/kept/$file" "$work/alone/$file" || fail "$file has other bytes"; done
"$STOPNGO" eval "$manifest" --weights weights/default.bin | cmp - "$work/judged" || fail "another judgement"
echo "cluster_test: ${#files[@]} files with the bytes of one machine, a part begun again after its node was killed"

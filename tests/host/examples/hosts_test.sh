#!/usr/bin/env bash
# hosts_test.sh: the hosts of host/examples see a departure at a camera's rate, and say what is wrong.
#
#     hosts_test.sh EMULATOR MODULE-FOLDER DEPARTURE HOST [HOST-CPP STOPNGO]
#
# EMULATOR runs the programs of another processor; empty where they run by themselves.
set -euo pipefail
emulator=${1//;/ }
export LD_LIBRARY_PATH=$2
departure=$3
host=$4
host_cpp=${5:-}
stopngo=${6:-}
top=$(cd "$(dirname "$0")/../../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/empty"
cp "$top"/weights/default.bin* "$folder"
cd "$folder"  # set_up.h names the weights without a folder
failures=0

fail() {
  echo "hosts_test: $*" >&2
  failures=$((failures + 1))
}

# Words of the emulator are words of the command.
# shellcheck disable=SC2086
run() { $emulator "$@"; }

# decisions FPS-OF-CAMERA STRIDE FPS-TOLD: what the host tells of the departure.
decisions() {
  run "$departure" "$1" "$2" | run "$host" 800 480 "$2" "$3" | grep -v '^load classify'
}

expect() {  # WHAT FOUND WANTED
  [ "$2" = "$3" ] || fail "$1"$'\n'"$2"$'\n'"wanted:"$'\n'"$3"
}

seen="   5.167 s  decision 1 (alarm)
   6.333 s  decision 2 (cooling)
240 frames, 48 handed over"
expect "30 frames a second" "$(decisions 30 800 30)" "$seen"
expect "rows of 832 bytes" "$(decisions 30 832 30)" "$seen"
expect "25 frames a second" "$(decisions 25 800 25)" "   5.680 s  decision 1 (alarm)
   6.840 s  decision 2 (cooling)
200 frames, 48 handed over"
# Told that they are 6 a second, the host hands over all 30: too little moves from one to the next.
expect "all frames" "$(decisions 30 800 6)" "240 frames, 240 handed over"

# refuses WORDS INPUT ARGUMENT…: exit code 1 and one sentence.
refuses() {
  local words=$1 input=$2 code=0
  shift 2
  run "$host" "$@" <"$input" >"$folder/out" 2>"$folder/err" || code=$?
  [[ $code = 1 && $(cat "$folder/err") =~ ^"host: "[^$'\n']*"$words"[^$'\n']*$ ]] ||
    fail "'$words' is not what $* gives: exit code $code, $(cat "$folder/err")"
}

head -c 768000 /dev/zero >"$folder/two"
head -c 767999 /dev/zero >"$folder/cut"
refuses "usage" "$folder/two" 800 480 800
refuses "another size" "$folder/two" 1280 720 1280 30
refuses "STRIDE" "$folder/two" 800 480 799 30
refuses "STRIDE" "$folder/two" 800 480 -1 30
refuses "STRIDE" "$folder/two" 800 480 832.5 30
refuses "STRIDE" "$folder/two" 800 480 1e300 30
refuses "FPS" "$folder/two" 800 480 800 5
refuses "FPS" "$folder/two" 800 480 800 nan
for arguments in "800x 480 800 30" "800 480p 800 30" "800 480 800b 30" "800 480 800 30fps" "800 480 800 often"; do
  # shellcheck disable=SC2086  # four words
  refuses "usage" "$folder/two" $arguments
done
refuses "time stamps" "$folder/two" 800 480 800 inf
refuses "ends within a frame" "$folder/cut" 800 480 800 6
refuses "cannot be read" "$folder" 800 480 800 6
refuses "less than two frames" /dev/null 800 480 800 6
cd empty
refuses "weights file" "$folder/two" 800 480 800 6
cd ..
LD_LIBRARY_PATH=$folder/empty refuses "libzetstopngo.so.1" "$folder/two" 800 480 800 6
if run "$host" 800 480 800 6 <"$folder/two" >/dev/full 2>"$folder/err"; then
  fail "decisions that nobody gets"
fi
grep -q "could not be printed" "$folder/err" || fail "no word of decisions that nobody gets"

if [ -n "$host_cpp" ]; then
  expect "the host in C++" "$("$departure" 30 832 | "$host_cpp" 32 30)" "5.16667 s  decision 1
6.33333 s  decision 2"
  if "$host_cpp" 0 6 <"$folder/cut" 2>"$folder/err"; then
    fail "the host in C++ takes an input that ends within a frame"
  fi
  grep -qx "host: the input ends within a frame" "$folder/err" || fail "the host in C++: $(cat "$folder/err")"
  "$stopngo" check --weights default.bin --emit c | diff "$top/host/examples/set_up.h" - >&2 ||
    fail "host/examples/set_up.h is not what stopngo check --weights default.bin --emit c prints"
fi
[ "$failures" = 0 ] && echo "hosts_test: passed"

#!/usr/bin/env bash
# python_test.sh: the host in Python that docs/integrating.md has sees a departure, and says what is wrong.
#
#     python_test.sh MODULE-FOLDER DEPARTURE
set -euo pipefail
export LD_LIBRARY_PATH=$1
departure=$2
top=$(cd "$(dirname "$0")/../../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
# shellcheck disable=SC2016  # backticks of the page
sed -n '/^```python$/,/^```$/ { /^```/d; p }' "$top/docs/integrating.md" >host.py
[ -s host.py ] || { echo "python_test: docs/integrating.md has no code in Python" >&2; exit 1; }

if "$departure" 6 800 | python3 host.py >out 2>err || ! grep -q "default.bin cannot be loaded" err; then
  echo "python_test: no word of weights that are not there: $(cat out err)" >&2
  exit 1
fi
cp "$top/weights/default.bin" .
seen=$("$departure" 6 800 | python3 host.py | grep -v '^load classify')
wanted="5.000 s alarm
6.167 s cooling"
[ "$seen" = "$wanted" ] || { echo "python_test: $seen"$'\n'"wanted: $wanted" >&2; exit 1; }
echo "python_test: passed"

# begin.sh: how the tests of this folder begin: sourced with the path of stopngo. They work in a folder of their own, and
# what they start ends with them.
set -euo pipefail
stopngo=$(realpath "$1")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$folder"' EXIT
cd "$folder"

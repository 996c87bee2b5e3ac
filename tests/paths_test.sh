#!/usr/bin/env bash
# paths_test.sh: every file and folder that the documents name is there, and every refusal of the module is told.
#
#     tests/paths_test.sh [DOCUMENT…]
#
# Links lead from the document's own folder. Paths in backticks start at the top of the tree, in src or tools, or in
# the document's folder; sources may be named without one. Words in capitals stand for any name
# (kernels/SET_SUBJECT.cpp). What a build makes (build/…) is not looked for. docs/integrating.md has a line for each
# reason for which a frame is refused.
set -euo pipefail
cd "$(dirname "$0")/.."
documents=("$@")
[ $# -gt 0 ] || documents=(README.md CONTRIBUTING.md docs/*.md)
sources=$(find bench cmake host include scripts selftest src tests tools -type f)

looked_for=0
missing=0

# look_for DOCUMENT PATH ROOT…
look_for() {
  local document=$1 path=$2 root
  shift 2
  looked_for=$((looked_for + 1))
  for root in "$@"; do
    compgen -G "$root/$(sed -E 's/\b[A-Z_]{3,}\b/*/g' <<<"${path%/}")" >/dev/null && return
  done
  echo "$document: $path does not exist" >&2
  missing=$((missing + 1))
}

# in_backticks DOCUMENT PATTERN: what matches as a whole, without what follows behind a space.
in_backticks() {
  grep -oE "\`($2)( [^\`]*)?\`" "$1" | tr -d '`' | cut -d' ' -f1 | sort -u
}

for document in "${documents[@]}"; do
  folder=$(dirname "$document")
  while read -r path; do
    look_for "$document" "$path" "$folder"
  done < <(grep -oE '\]\([^)]+\)' "$document" | sed -E 's/^\]\(//; s/[#)].*$//' | grep -vE '^$|^[a-z]+:')
  while read -r path; do
    look_for "$document" "$path" . src tools "$folder"
  done < <(in_backticks "$document" '[A-Za-z0-9_.*-]+/[A-Za-z0-9_.*/-]*' | grep -v '^build/')
  while read -r name; do
    looked_for=$((looked_for + 1))
    grep -q "/$name\$" <<<"$sources" && continue
    echo "$document: no source is called $name" >&2
    missing=$((missing + 1))
  done < <(in_backticks "$document" '[A-Za-z0-9_]+\.(c|h|cpp|inc|def|cmake|map)')
done
# The reasons stand alone in quotes, behind return or as what Refuse is given.
while read -r reason; do
  looked_for=$((looked_for + 1))
  grep -qF "| $reason |" docs/integrating.md && continue
  echo "docs/integrating.md: nothing is told of '$reason'" >&2
  missing=$((missing + 1))
done < <(sed -nE 's/.*return (Refuse\(ctx, )?"([^"]+)"\)?;.*/\2/p' src/refusal.cpp src/write.cpp)
echo "paths_test: $looked_for paths, $missing missing"
[ "$looked_for" -gt 0 ] && [ "$missing" -eq 0 ]

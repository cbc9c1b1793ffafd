#!/usr/bin/env bash
# thorough.sh [PART...]: everything that takes longer than ./test may, one part of thorough.d/ after the other, or those
# that are named ("clang"). Prints the counts at the end; fails when a part did.
set -euo pipefail
cd "$(dirname "$0")/.."
shopt -s nullglob

counts=$(mktemp)
trap 'rm -f "$counts"' EXIT
export KZB_COUNTS=$counts

failed=()
for part in .ci/thorough.d/*.sh; do
    name=$(basename "$part" .sh)
    (($# == 0)) || [[ " $* " == *" $name "* ]] || continue
    printf '\n=== %s\n' "$name"
    started=$SECONDS
    bash "$part" || failed+=("$name")
    printf '%s: %d s\n' "$name" $((SECONDS - started))
done

printf '\n=== counts\n'
cat "$counts"
if ((${#failed[@]})); then
    printf 'failed: %s\n' "${failed[*]}"
    exit 1
fi

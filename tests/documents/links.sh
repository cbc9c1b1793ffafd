#!/usr/bin/env bash
# Every link in a page to a file of the project, and to a heading in it, leads somewhere. links.sh FOLDER PAGE...
set -euo pipefail
cd "$1"
shift

# The anchors of a page's headings.
anchors() { sed -nE 's/^#+ +//p' "$1" | tr 'A-Z ' 'a-z-' | tr -cd 'a-z0-9\n_-'; }

failed=0
count=0
for page; do
    while IFS= read -r link; do
        count=$((count + 1))
        file=${link%%#*}
        target=$page
        [[ -z $file ]] || target=$(dirname "$page")/$file
        if [[ ! -e $target ]]; then
            echo "$page: $link: there is no such file"
            failed=1
        elif [[ $link == *'#'* ]] && ! grep -qxF -e "${link#*#}" <<<"$(anchors "$target")"; then
            echo "$page: $link: there is no such heading"
            failed=1
        fi
    done < <(grep -oE '\]\([^) ]+\)' "$page" | sed -E 's/^\]\((.*)\)$/\1/' | grep -v '^https\?:' || true)
done
((count >= 50)) || { echo "only $count links"; failed=1; }
exit "$failed"

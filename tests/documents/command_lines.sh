#!/usr/bin/env bash
# Runs every command line of a page as it stands, in order, in a folder with a small photo.jpg and photo.png. A command
# line is a line of four spaces and a call of kzb; one that ends in a backslash goes on in the next.
# command_lines.sh BUILD_FOLDER FEWEST PAGE
set -euo pipefail
build=$(realpath "$1")
fewest=$2
page=$(realpath "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
ln -s "$build" build
PATH=$build:$PATH
mkdir out pictures
sample_photograph photo.png 400 250
kzb --quiet photo.png : CopyPicture -o photo.jpg
# The README's own picture is that of ./run.
grep -q out/sample.png "$page" && sample_photograph out/sample.png 1280 800

count=0
line=''
while IFS= read -r part; do
    line+=${part%\\}
    [[ $part == *\\ ]] && continue
    echo "$line"
    rm -f said
    bash -o pipefail -c "$line" >said 2>&1 </dev/null || { echo "failed: $(cat said)"; exit 1; }
    [[ $line != *' -o '* || ! -s said ]] || { echo "it said: $(cat said)"; exit 1; }
    count=$((count + 1))
    line=''
done < <(awk '/^    ([A-Z]+=[^ ]+ )?(build\/)?kzb / { on = 1 } on { print substr($0, 5) } !/\\$/ { on = 0 }' "$page")
((count >= fewest)) || { echo "only $count command lines in $page"; exit 1; }

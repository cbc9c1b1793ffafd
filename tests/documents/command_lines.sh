#!/usr/bin/env bash
# Runs every command line of a page as it stands, in order, in a folder with a small photo.jpg and photo.png.
# command_lines.sh BUILD_FOLDER FEWEST PAGE
set -euo pipefail
here=$(realpath "$(dirname "$0")")
build=$(realpath "$1")
fewest=$2
page=$(realpath "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
ln -s "$build" build
ln -s "$here/../../examples" examples
PATH=$build:$PATH
mkdir out pictures
sample_photograph photo.png 400 250
kzb --quiet photo.png : CopyPicture -o photo.jpg
# The README's own picture is that of ./run.
grep -q out/sample.png "$page" && sample_photograph out/sample.png 1280 800

count=0
while IFS= read -r line; do
    echo "$line"
    rm -f said
    bash -o pipefail -c "$line" >said 2>&1 </dev/null || { echo "failed: $(cat said)"; exit 1; }
    # A chain that writes a file has nothing to say.
    [[ $line != *' : '*' -o '* || ! -s said ]] || { echo "it said: $(cat said)"; exit 1; }
    count=$((count + 1))
done < <("$here/commands_of.sh" "$page")
((count >= fewest)) || { echo "only $count command lines in $page"; exit 1; }

#!/usr/bin/env bash
# Runs every command line of the README as it stands, in a folder where the build is build/ and the sample is small.
# readme_examples.sh README BUILD_FOLDER
set -euo pipefail
readme=$(realpath "$1")
build=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
ln -s "$build" build
mkdir out
build/sample_photograph out/sample.png 1280 800

count=0
while IFS= read -r line; do
    echo "$line"
    said=$(eval "$line" 2>&1) || { echo "failed: $said"; exit 1; }
    [[ -z $said ]] || { echo "it said: $said"; exit 1; }
    output=$(sed -E 's/.* -o ([^ ]+).*/\1/' <<<"$line")
    [[ -s $output ]] || { echo "$output was not written"; exit 1; }
    count=$((count + 1))
done < <(sed -nE 's/^    (build\/kzb .*)/\1/p' "$readme")
((count >= 5)) || { echo "only $count command lines in the README"; exit 1; }

#!/usr/bin/env bash
# The pictures are in files while the program runs, and no file is left. scratch_factory.sh PROGRAM MODULE
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
diff <("$1" "$2" "$folder") - <<TEXT
640 x 400 pixels in $folder/picture-1
400 x 640 pixels in $folder/picture-2
turned, in a file
objects left: 0
TEXT
[[ -z $(ls -A "$folder") ]]

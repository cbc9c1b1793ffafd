#!/usr/bin/env bash
# Runs the scripts of examples/scripts on small pictures and looks at what they wrote. scripts.sh BUILD_FOLDER SCRIPTS
set -euo pipefail
build=$(realpath "$1")
scripts=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
PATH=$scripts:$build:$PATH

failed=0
wrong() {
    echo "$*"
    failed=1
}
# is FILE WIDTH HEIGHT
is() {
    local size
    size=$(kzb -n "$1" -o out.png | sed -nE 's/.* ([0-9]+ x [0-9]+) pixels.*/\1/p')
    [[ $size == "$2 x $3" ]] || wrong "$1 is of $size pixels, not $2 x $3"
}
# The bytes of a picture's colours, in hexadecimal, of a rectangle: pixels FILE X Y WIDTH HEIGHT
pixels() { kzb "$1" : CopyPicture : ClipImage "${@:2}" -o ppm:- | tail -c $((3 * $4 * $5)) | od -An -v -tx1 | tr -d ' \n'; }
same() { cmp -s <(kzb "$1" -o ppm:-) <(kzb "$2" -o ppm:-); }

sample_photograph faded.png 160 100
kzb faded.png : CopyPicture -o photo.png
run=()
# one NAME ARGUMENT...: runs a script from photo.png to NAME.png
one() {
    run+=("$1")
    "$1" photo.png "$1.png" "${@:2}" || wrong "$1 failed"
    ! same photo.png "$1.png" || wrong "$1 changed nothing"
}

one duotone 000000 FF8000
is duotone.png 160 100
pixels duotone.png 0 0 160 100 | fold -w 6 | grep -qvE '..00$' && wrong "duotone: blue is in neither colour"
one sepia
is sepia.png 160 100
one halftone_poster
is halftone_poster.png 320 200
pixels halftone_poster.png 0 0 320 200 | fold -w 2 | sort -u | tr -d '\n' | grep -qx 00ff || wrong "halftone_poster: more than dots"
one watermark
is watermark.png 160 100
[[ $(pixels watermark.png 0 0 160 60) == $(pixels photo.png 0 0 160 60) ]] || wrong "watermark: above the mark is a change"
one channel_mix
channel_mix channel_mix.png back.png
same photo.png back.png || wrong "channel_mix: twice is not the picture"
one soft_focus
is soft_focus.png 160 100
kzb photo.png : GainFilter gain=0.58 bias=0.5 -o sharp.png
[[ $(pixels soft_focus.png 0 45 160 20) == $(pixels sharp.png 0 45 160 20) ]] || wrong "soft_focus: the middle is not sharp"
one frame 10 '#FF0000'
is frame.png 180 120
[[ $(pixels frame.png 0 0 2 1) == ff0000ff0000 ]] || wrong "frame: the corner is not red"
[[ $(pixels frame.png 10 10 160 100) == $(pixels photo.png 0 0 160 100) ]] || wrong "frame: the picture is not in it"
one pencil_sketch
is pencil_sketch.png 159 99
one straighten 5
[[ $(pixels straighten.png 0 0 1 1) != 000000 ]] || wrong "straighten: a corner is left"

run+=(logo)
kzb photo.png : Scale ScaleBox 20 10 -o mark.png
logo photo.png mark.png 130 5 logo.png
is logo.png 160 100
[[ $(pixels logo.png 130 5 20 10) == $(pixels mark.png 0 0 20 10) ]] || wrong "logo: it is not there"
[[ $(pixels logo.png 0 0 130 100) == $(pixels photo.png 0 0 130 100) ]] || wrong "logo: the photograph changed"

run+=(large_rotation)
mkdir scratch
large_rotation photo.png large.png 90 scratch
kzb photo.png : Rotate90 -o turned.png
same large.png turned.png || wrong "large_rotation: 90 degrees are not Rotate90"
large_rotation photo.png large.png 30 scratch
is large.png 189 167
[[ -z $(ls -A scratch) ]] || wrong "large_rotation: files are left"

mkdir in
kzb photo.png -o in/a.jpg
kzb photo.png : Rotate90 -o in/b.jpg
kzb photo.png : Invert -o in/c.png
run+=(sharpened_thumbnails web_folder contact_sheet)
sharpened_thumbnails in thumbnails 40
is thumbnails/a.jpg 40 25
is thumbnails/b.jpg 40 64
is thumbnails/c.jpg 40 25
web_folder in web
is web/a.webp 160 100
is web/b.webp 100 160
contact_sheet sheet.png in/* photo.png frame.png
is sheet.png 992 336
[[ $(pixels sheet.png 700 200 4 1) == ffffffffffffffffffffffff ]] || wrong "contact_sheet: the empty place is not white"

for script in "$scripts"/*; do
    name=$(basename "$script")
    [[ " ${run[*]} " == *" $name "* ]] || wrong "$name is run by no test"
    [[ $("$script" 2>&1 || true) == "usage: $name "* ]] || wrong "$name does not tell its usage"
done
exit "$failed"

#!/usr/bin/env bash
# Installs into an empty folder and uses what is there, as someone would who has nothing else.
# installed.sh BUILD_FOLDER SOURCE_FOLDER COMPILER [FLAG...]
set -euo pipefail
build=$(realpath "$1")
source=$(realpath "$2")
shift 2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$build" --prefix "$folder/usr" >"$folder/log" || { cat "$folder/log"; exit 1; }
cd "$folder"

"$build/sample_photograph" photo.png 96 60
expected=$folder/usr/lib/picturekzb/PictureKZB.so
read -r _ _ _ module < <(env -i "$folder/usr/bin/kzb" info)
[[ $module == "$expected" ]] || { echo "kzb found the module $module, not $expected"; exit 1; }
env -i "$folder/usr/bin/kzb" photo.png : GammaFilter 2.2 alphaGamma=1 -o brighter.png
[[ -s brighter.png ]] || { echo "kzb wrote nothing"; exit 1; }

# A program against the library, by pkg-config alone.
export PKG_CONFIG_PATH=$folder/usr/lib/pkgconfig
read -ra flags < <(pkg-config --cflags --libs kzbruntime)
"$@" -std=c11 "$source/examples/load_module.c" "${flags[@]}" -o load_module
readelf -d load_module | grep -q 'NEEDED.*libkzbruntime\.so\.1\]' || { echo "the library has no soname"; exit 1; }
LD_LIBRARY_PATH=$folder/usr/lib ./load_module "$(pkg-config --variable=module kzbruntime)" | grep -q 'objects left: 0'

groff -man -ww -z usr/share/man/man1/kzb.1 >warnings 2>&1
[[ ! -s warnings ]] || { cat warnings; exit 1; }
bash -n usr/share/bash-completion/completions/kzb
zsh -n usr/share/zsh/vendor-completions/_kzb
fish --no-execute usr/share/fish/vendor_completions.d/kzb.fish

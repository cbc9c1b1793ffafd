#!/usr/bin/env bash
# Makes the Debian package and looks into it. package.sh BUILD_FOLDER
set -euo pipefail
build=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
cpack --config "$build/CPackConfig.cmake" -B "$folder" >log 2>&1 || { cat log; exit 1; }
package=$(echo picturekzb_*.deb)
files=$(dpkg-deb --contents "$package" | sed -E 's/.* \.(\/[^ ]*).*/\1/')
for file in /usr/bin/kzb '/usr/lib/.*picturekzb/PictureKZB\.so' '/usr/lib/.*libkzbruntime\.so\.1' \
    /usr/include/picturekzb/runtime.h /usr/include/picturekzb/host_interface.h '/usr/lib/.*pkgconfig/kzbruntime\.pc' \
    /usr/share/man/man1/kzb.1 /usr/share/bash-completion/completions/kzb; do
    grep -qxE "$file" <<<"$files" || { echo "$package has no $file"; exit 1; }
done
needs=$(dpkg-deb --field "$package" Depends)
for library in libc6 libpng16-16 libffi8; do
    [[ $needs == *"$library"* ]] || { echo "$package does not say that it needs $library: $needs"; exit 1; }
done
dpkg-deb --control "$package" control
grep -q 'libkzbruntime 1 picturekzb' control/shlibs

#!/usr/bin/env bash
# foreign_libraries.sh ARCHITECTURE DIRECTORY PACKAGE...
# Unpacks Debian packages of another architecture into a directory, for builds that the toolchain files describe.
# Nothing is installed, so that their versions need not be those of this machine's own packages.
set -euo pipefail
architecture=$1
directory=$2
packages=("${@:3}")

[[ $(cat "$directory/packages" 2>/dev/null) != "${packages[*]}" ]] || exit 0

rm -rf "$directory"
mkdir -p "$directory"/apt/{lists,archives}/partial
cd "$directory"
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian $codename main" \
    >apt/sources.list
: >apt/status
options=(-qq -o APT::Architecture="$architecture" -o APT::Architectures="$architecture"
    -o Dir::State="$PWD/apt" -o Dir::State::status="$PWD/apt/status" -o Dir::Cache="$PWD/apt"
    -o Dir::Etc::sourcelist="$PWD/apt/sources.list" -o Dir::Etc::sourceparts=/dev/null -o APT::Sandbox::User=)
apt-get "${options[@]}" update
(cd apt/archives && apt-get "${options[@]}" download "${packages[@]}" >/dev/null)
for package in apt/archives/*.deb; do dpkg -x "$package" .; done
rm -rf apt
# Links to absolute paths would lead out of the directory.
find . -lname '/*' | while read -r link; do ln -sfn "$PWD$(readlink "$link")" "$link"; done
echo "${packages[*]}" >packages

# Sourced by ./run and ./test: what the build needs, and the build itself.

# Debian's packages: compiler and build tools, then the libraries of the embedded host, kzb and the tests.
packages=(
    g++ cmake ninja-build pkg-config
    libffi-dev libpixman-1-dev libpng-dev libjpeg62-turbo-dev libwebp-dev libtiff-dev
    libcli11-dev libchafa-dev libglib2.0-dev
    dpkg-dev file groff-base
    libgtest-dev nlohmann-json3-dev zsh fish
)

say() { printf '%s\n' "$*"; }

complain() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# Installs the packages that are missing; touches neither the network nor apt when none is.
install_packages() {
    command -v dpkg-query >/dev/null || return 0 # not Debian: whoever builds has seen to it
    local package missing=()
    for package in "${packages[@]}"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            complain "these packages are missing: ${missing[*]}; as root, run: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    say "Installing ${missing[*]} ..."
    "${as_root[@]}" apt-get update -qq ||
        complain "the list of packages could not be fetched; look at the network, or install: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -qq -y --no-install-recommends "${missing[@]}" >/dev/null ||
        complain "installing failed: ${missing[*]}"
}

# Configures build/ once and builds it. Quiet unless something is wrong.
build() { build_in build -- "$@"; }

# build_in FOLDER [words for the configuration] -- [words for the build]
build_in() {
    local folder=$1 log=$1/build.log configuration=()
    shift
    while [[ $1 != -- ]]; do
        configuration+=("$1")
        shift
    done
    shift
    mkdir -p "$folder"
    if [[ ! -f $folder/CMakeCache.txt ]]; then
        cmake -S . -B "$folder" -G Ninja "${configuration[@]}" >"$log" 2>&1 || {
            cat "$log" >&2
            complain "the build could not be set up"
        }
    fi
    cmake --build "$folder" -j "$(nproc)" "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        complain "the build failed"
    }
}

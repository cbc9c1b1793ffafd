# Sourced by the parts of thorough.d/, which run in the project's folder.
set -euo pipefail
source .ci/prepare.sh

# Adds a line to the counts that are printed at the end.
count() { printf '%-10s %s\n' "$(basename "$0" .sh):" "$*" | tee -a "${KZB_COUNTS:-/dev/null}"; }

# The libraries of the embedded host and the tests for another architecture; further packages after it.
fetch_libraries() {
    say "Fetching the libraries for $1 ..."
    .ci/foreign_libraries.sh "$1" "build-foreign/$1" \
        libffi-dev libffi8 libpixman-1-dev libpixman-1-0 libpng-dev libpng16-16 libjpeg62-turbo-dev libjpeg62-turbo \
        libwebp-dev libwebp7 libwebpmux3 libwebpdemux2 libtiff-dev libtiff6 libdeflate-dev libdeflate0 \
        libjbig0 liblzma-dev liblzma5 libzstd-dev libzstd1 liblerc4 \
        zlib1g-dev zlib1g libgtest-dev "${@:2}" || complain "the libraries for $1 could not be fetched"
}

# Builds a preset in its own folder; further words go to the build.
build_preset() {
    say "Building $1 ..."
    build_in "build-$1" --preset "$1" -- "${@:2}"
}

# Runs a preset's tests and counts them; further words go to ctest.
run_tests() {
    local folder=build-$1 failed=0
    ctest --test-dir "$folder" --output-on-failure -j2 "${@:2}" >"$folder/test.log" 2>&1 || failed=1
    if ((failed)); then grep -vE '( Start |   Passed )' "$folder/test.log" || true; fi
    # The programs' own output: how many tests each ran, and the digests.
    local log=$folder/Testing/Temporary/LastTest.log tests operations
    tests=$(sed -nE 's/^\[==========\] ([0-9]+) tests? from .* ran.*/\1/p' "$log" | awk '{ n += $1 } END { print n + 0 }')
    operations=$(sed -nE 's/^([0-9]+) operations give the expected bytes$/\1/p' "$log")
    count "$tests tests, ${operations:-0} operations with the expected bytes$( ((failed)) && echo ', FAILED')"
    return "$failed"
}

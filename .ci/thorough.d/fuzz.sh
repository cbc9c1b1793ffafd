# Each fuzzer for a minute, from its corpus; KZB_FUZZ_SECONDS for longer, KZB_FUZZERS for some of them. What they find is
# left in build-fuzz/found.
source .ci/part.sh
packages=(clang libclang-rt-14-dev)
install_packages
build_preset fuzz
export ASAN_OPTIONS=allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1
seconds=${KZB_FUZZ_SECONDS:-60}

# fuzz NAME: goes on from what earlier runs came to, which stays in build-fuzz.
fuzz() {
    local name=$1 log=build-fuzz/fuzz-$1.log failed=0
    mkdir -p "build-fuzz/corpus/$name" build-fuzz/found
    say "Fuzzing $name for $seconds seconds ..."
    # The host keeps released objects for a while, so that leaks can be told only at the end.
    "build-fuzz/fuzz_$name" -max_total_time="$seconds" -max_len="$2" -timeout=20 -rss_limit_mb=4096 -detect_leaks=0 \
        -print_final_stats=1 -artifact_prefix="build-fuzz/found/$name-" "build-fuzz/corpus/$name" "fuzz/corpus/$name" \
        >"$log" 2>&1 || failed=1
    if ((failed)); then grep -vE '^#[0-9]+|NEW_FUNC' "$log" | tail -n 60; fi
    local runs edges
    runs=$(sed -nE 's/^stat::number_of_executed_units: +//p' "$log")
    edges=$(sed -nE 's/^#.* cov: ([0-9]+) .*/\1/p' "$log" | tail -n 1)
    count "$name: ${runs:-0} inputs, ${edges:-0} edges$( ((failed)) && echo ', FAILED')"
    return "$failed"
}

# The longest input of each.
declare -A lengths=([calls]=512 [differential]=96 [image_files]=2048)
result=0
for name in ${KZB_FUZZERS:-calls differential image_files}; do
    fuzz "$name" "${lengths[$name]}" || result=1
done
exit "$result"

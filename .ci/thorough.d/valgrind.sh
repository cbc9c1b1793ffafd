# memcheck over the tests that make, share, break and release things, which take every method through its failures, and
# over the fuzzers' corpus.
source .ci/part.sh
packages+=(valgrind)
install_packages
say "Building ..."
build
programs=(
    carbon_test geometry_internals_test host_internals_test image_internals_test kernels_test
    stand_ins_test host_test yield_test image_test mapped_store_test rows_test interop_test views_test
    method_table_test memory_faults_test factory_reentry_test scale_memory_test turn_memory_test
    blur_frame_test drawing_pacing_test effects_frame_test rectangle_pacing_test scale_yield_test turn_yield_test
    fuzz_replay_calls fuzz_replay_differential fuzz_replay_image_files
)
rm -rf build/valgrind
mkdir -p build/valgrind
failed=()
for program in "${programs[@]}"; do
    log=build/valgrind/$program.log
    words=()
    [[ $program != fuzz_replay_* ]] || words=("fuzz/corpus/${program#fuzz_replay_}")
    # Processes that the tests start are about what dies, not about what is released.
    valgrind -q --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite,indirect,possible \
        --child-silent-after-fork=yes "build/tests/$program" "${words[@]}" >"$log" 2>&1 || {
        failed+=("$program")
        grep -vE '^\[ +(RUN|OK) +\]' "$log" | tail -n 60
    }
done
# The sum of a number in the logs.
sum_of() { sed -nE "s/$1/\\1/p" build/valgrind/*.log | awk '{ n += $1 } END { print n + 0 }'; }
tests=$(sum_of '^\[==========\] ([0-9]+) tests? from .* ran.*')
inputs=$(sum_of '^([0-9]+) inputs replayed$')
count "$tests tests, $inputs inputs of the fuzzers, in ${#programs[@]} programs${failed[*]:+, FAILED: ${failed[*]}}"
((${#failed[@]} == 0))

# Branch coverage of src/ by the whole suite, as clang counts it: each side of each condition is a branch. Fails when a
# branch that no test takes is not explained in coverage.txt.
source .ci/part.sh
packages=(clang llvm libclang-rt-14-dev python3)
install_packages
build_preset coverage
profiles=build-coverage/profiles
rm -rf "$profiles"
mkdir -p "$profiles"
export LLVM_PROFILE_FILE=$PWD/$profiles/%c%m-%p.profraw
failed=0
# The profile's own library is more than the module may need.
run_tests coverage -E '^module_symbols$' || failed=1
llvm-profdata merge -sparse --failure-mode=all -o build-coverage/tests.profdata "$profiles"
programs=(build-coverage/tests/{carbon,current_factory,geometry_internals,host_internals,image_internals,kernels,stand_ins}_test)
objects=("${programs[@]}" build-coverage/PictureKZB*.so)
llvm-cov export --instr-profile=build-coverage/tests.profdata "${objects[@]/#/--object=}" >build-coverage/tests.json
python3 .ci/thorough.d/coverage.py build-coverage/tests.json .ci/thorough.d/coverage.txt >build-coverage/branches.txt ||
    failed=1
cat build-coverage/branches.txt
count "$(tail -n 1 build-coverage/branches.txt)"
exit "$failed"

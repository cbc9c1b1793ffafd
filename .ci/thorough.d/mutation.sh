# Changes src/ in KZB_MUTANTS places, one at a time, chosen by KZB_SEED: the tests must notice each, or mutation.txt say
# why the change makes no difference.
source .ci/part.sh
packages+=(python3)
install_packages
say "Building and testing mutants, which takes about an hour for 200 ..."
failed=0
mkdir -p build-mutation
python3 -u .ci/thorough.d/mutation.py --count "${KZB_MUTANTS:-200}" --seed "${KZB_SEED:-1}" --jobs "$(nproc)" \
    >build-mutation/mutation.log 2>&1 || failed=1
if ((failed)); then sed -n '/^$/,$p' build-mutation/mutation.log; fi
count "$(tail -n 1 build-mutation/mutation.log)"
exit "$failed"

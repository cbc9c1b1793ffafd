# The whole suite under the address, leak and undefined-behaviour sanitizers.
source .ci/part.sh
build_preset sanitize
run_tests sanitize

# Clang as the second compiler: no warning, the same tests, the same bytes.
source .ci/part.sh
packages=(clang)
install_packages
build_preset clang
run_tests clang

# 32 bits: the same tests, the same bytes.
source .ci/part.sh
packages=(g++-multilib)
install_packages
fetch_libraries i386
build_preset m32
run_tests m32

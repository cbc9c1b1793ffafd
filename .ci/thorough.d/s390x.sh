# Big endian, in qemu: the same bytes, and the tests of the module and its host. What starts other programs, death tests
# too, cannot run there.
source .ci/part.sh
packages=(clang binutils-s390x-linux-gnu qemu-user-static)
install_packages
fetch_libraries s390x libcli11-dev libc6 libc6-dev linux-libc-dev libgcc-s1 libgcc-12-dev libstdc++6 libstdc++-12-dev
build_preset s390x
run_tests s390x --timeout 3600 -E '^(cli_test|sample_photograph_test)$|DeathTest'

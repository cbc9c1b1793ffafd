#include "host.h"
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kzb_test;

namespace {

class StandardInput : public SamplerTest {
protected:
    // Whether descriptor 0 is the null device, and read-only.
    static void expect_null_device() {
        struct stat zero, null_device;
        ASSERT_EQ(fstat(0, &zero), 0);
        ASSERT_EQ(stat("/dev/null", &null_device), 0);
        EXPECT_EQ(zero.st_rdev, null_device.st_rdev);
        EXPECT_EQ(fcntl(0, F_GETFL) & O_ACCMODE, O_RDONLY);
        EXPECT_EQ(fcntl(0, F_GETFD) & FD_CLOEXEC, 0);
    }
};

TEST_F(StandardInput, IsKeptOffDescriptor0) {
    expect_null_device();
    EXPECT_NE(kzb_standard_input(), 0);
    EXPECT_EQ(kzb_standard_input(), kzb_standard_input());
    if (kzb_standard_input() > 0) {
        EXPECT_GE(kzb_standard_input(), 3);
        EXPECT_NE(fcntl(kzb_standard_input(), F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_LT(ftruncate(0, 0), 0);
}

TEST_F(StandardInput, ComesBackAfterACallThatClosesIt) {
    call("CloseDescriptor");
    expect_null_device();
    int file = open("/dev/null", O_RDONLY);
    EXPECT_NE(file, 0);
    close(file);
}

TEST_F(StandardInput, ComesBackAfterADestructorThatClosesIt) {
    call("CloseDescriptorAtTheEnd");
    sampler = nil();
    expect_null_device();
}

// A process of its own: what a program reads from the moved descriptor is its real input.
TEST(StandardInputDeathTest, IsReadFromItsNewDescriptor) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            int ends[2];
            if (pipe(ends) != 0 || write(ends[1], "input", 5) != 5) _exit(2);
            dup2(ends[0], 0);
            char bytes[8] = {};
            if (read(kzb_standard_input(), bytes, sizeof bytes) != 5 || std::strcmp(bytes, "input") != 0) _exit(3);
            if (read(0, bytes, sizeof bytes) != 0) _exit(4);
            _exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(StandardInputDeathTest, MayBeMissing) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            close(0);
            if (kzb_standard_input() != -1) _exit(2);
            _exit(fcntl(0, F_GETFD) < 0 ? 3 : 0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace

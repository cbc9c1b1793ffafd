// Scratch files on a system whose calls fail.

#include "faults/arguments.h"
#include "faults/system_faults.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

namespace kzb::test {
namespace {

namespace files = std::filesystem;

// What a call leaves behind beside what Watch sees. One call that failed may have left one.
class FileWatch {
public:
    std::string difference(size_t more_files = 0, size_t more_mappings = 0) {
        std::string text = watch_.difference();
        if (scratch_files() > files_ + more_files) text += ", a file is left";
        if (file_mappings() > mappings_ + more_mappings) text += ", a mapping is left";
        return text;
    }

private:
    Watch watch_;
    size_t files_ = scratch_files();
    size_t mappings_ = file_mappings();
};

constexpr System file_calls[] = {System::open,  System::fstat, System::flock,  System::fchmod,
                                 System::ftruncate, System::fallocate, System::lseek, System::write,
                                 System::mmap,  System::munmap, System::close, System::unlink};

bool has_other_manner(System call) {
    return call == System::write || call == System::lseek || call == System::fallocate || call == System::flock;
}

// Whether everything that the call leaves alone is left alone here too.
bool leaves_alone(const Undisturbed &known, const Observation &seen) {
    for (size_t i = 0; i < seen.arguments.size(); ++i)
        if (known.right.arguments[i] == known.before.arguments[i] && seen.arguments[i] != known.before.arguments[i])
            return false;
    return true;
}

void remove_scratch_files() {
    const files::path folder = files::path(scratch_path()).parent_path();
    for (const auto &entry : files::directory_iterator(folder)) files::remove_all(entry);
}

// The call, and the release of its arguments, with the n-th system call failing; whether it came to that.
bool run_failing(const Row &row, const Undisturbed &known, System call_name, Manner manner, uint64_t n,
                 Report &report) {
    report.step(row.variant + ", " + name_of(call_name) + (manner == Manner::other ? " otherwise" : "") +
                " at call " + std::to_string(n));
    FileWatch watch;
    bool reached = false;
    {
        std::optional<Call> call = arrange(row);
        SystemFault fault(call_name, n, false, manner);
        std::optional<Done> done = perform(row, *call);
        const bool reached_in_call = fault.reached();
        const Observation seen = observe(*done, *call);
        if (row.fails == FailsWith::invalid) {
            const std::string wrong = judge(row, row.shortage, known.before, known.right, seen);
            if (!wrong.empty()) report.fail(wrong);
        } else if (!leaves_alone(known, seen)) {
            report.fail("an argument was written to");
        } else if (!reached_in_call && !(seen == known.right)) {
            report.fail("differs without a fault");
        }
        done.reset();
        call.reset();
        clean_up();
        reached = fault.reached();
    }
    // A file that is locked is another image's.
    const bool file_stays = call_name == System::unlink || (call_name == System::flock && manner == Manner::error);
    const bool mapping_stays = call_name == System::munmap;
    if (const std::string difference = watch.difference(file_stays, mapping_stays); !difference.empty())
        report.fail(difference);
    if (file_stays) remove_scratch_files();
    report.count(reached);
    return reached;
}

TEST(Files, EachSystemCallFailingInTurn) {
    const uint64_t faults = for_each_row([](const Row &row, Report &report) {
        std::map<System, uint64_t> calls;
        for (System call : file_calls) calls[call] = calls_of(call);
        const Undisturbed known = undisturbed(row);
        for (System call : file_calls) {
            if (calls_of(call) == calls[call]) continue;
            for (Manner manner : {Manner::error, Manner::other})
                if (manner == Manner::error || has_other_manner(call))
                    for (uint64_t n = 1; run_failing(row, known, call, manner, n, report);) ++n;
        }
    });
    std::cout << faults << " system calls failed\n";
    EXPECT_GT(faults, 1000u);
}

// The call on an image of two blocks, and every other time with that image as its first argument too, with the n-th
// system call failing; whether it came to that.
bool run_on_blocks(const Row &row, const Image &tall, System call_name, uint64_t n, Report &report) {
    report.step(std::string(name_of(call_name)) + " at call " + std::to_string(n));
    Watch watch;
    bool reached = false;
    {
        Call call = arrange(row);
        call.object = plain_name(row.declaration) == "Close" ? view_of(tall, 0, 0, 2, tall.height()) : tall;
        if (is_image_argument(row, 0) && n % 2 == 0) call.arguments[0] = tall;
        SystemFault fault(call_name, n);
        perform(row, call);
        reached = fault.reached();
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
    report.count(reached);
    return reached;
}

TEST(Files, EachMappingOfABlockFailingInTurn) {
    // Used by all the child processes; what they write to it does not matter.
    constexpr int32_t width = 3, height = 4200;
    const Image tall = in_file(RGBA, width, height);
    ASSERT_LT(fields_of(tall).rows_per_block, height);
    const uint64_t faults = for_each_row([&](const Row &row, Report &report) {
        // One row of a declaration will do: the others differ in the images that are replaced here.
        static std::string done;
        if (row.kind != Kind::method || row.fails == FailsWith::invalid || row.declaration == done) return;
        done = row.declaration;
        for (uint64_t n = 1; run_on_blocks(row, tall, System::mmap, n, report) || n <= 2;) ++n;
        run_on_blocks(row, tall, System::munmap, 1, report);
    });
    std::cout << faults << " mappings of a block failed\n";
    EXPECT_GT(faults, 100u);
}

// The constructor's image and what it leaves behind, in words; empty when all is well.
std::string refused(const std::string &path, bool stays = false) {
    std::string text;
    FileWatch watch;
    {
        const Image image = unconstructed();
        image.call("Constructor", 9, 5, RGBA, 0, folder_item(path));
        if (fields_of(image).Valid) text += ", the image is Valid";
        if (has_storage(image.get())) text += ", the image has storage";
        if (image.width() != 9 || image.format() != RGBA) text += ", its size and layout cannot be read";
        image.call("FillRect", 1);
    }
    std::error_code none;
    if (files::exists(files::symlink_status(path, none)) != stays) text += stays ? ", it is gone" : ", a file is left";
    return text + watch.difference();
}

// Makes the image where there is room for fewer and fewer pages than it takes, and then where there is enough.
void fill_up(Report &report, const std::function<std::string(size_t bytes)> &give_room) {
    constexpr size_t page = 4096, pages_needed = 6; // five rows and one page
    for (size_t pages = 1; pages <= pages_needed + 1; ++pages) {
        report.step("room for " + std::to_string(pages) + " pages");
        const std::string path = give_room(pages * page);
        if (pages < pages_needed) {
            if (const std::string wrong = refused(path); !wrong.empty()) report.fail(wrong);
            report.count();
            continue;
        }
        const Image image = unconstructed();
        image.call("Constructor", 9, 5, RGBA, 0, folder_item(path));
        if (!fields_of(image).Valid) report.fail("the image is not Valid");
        // All of its pages are there to be written to.
        image.call("FillRect", 1);
        if (bytes_of(image.get()) != Bytes(5 * page, 1)) report.fail("the image cannot be filled");
    }
}

TEST(FullDisk, OfAProcessWithALimitOnFiles) {
    scratch_files();
    const uint64_t refusals = in_child("a limit on the size of files", [](Report &report) {
        signal(SIGXFSZ, SIG_IGN);
        fill_up(report, [](size_t bytes) {
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = bytes;
            setrlimit(RLIMIT_FSIZE, &limit);
            return scratch_path();
        });
    });
    EXPECT_EQ(refusals, 5u);
}

// A file system that holds some pages only; without the right to mount one there is but the test above.
TEST(FullDisk, OfASmallFileSystem) {
    const std::string folder = scratch_path();
    files::create_directory(folder);
    const uint64_t refusals = in_child("a small file system", [&](Report &report) {
        const bool may_mount = unshare(CLONE_NEWNS) == 0 &&
                               mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                               mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=4k") == 0;
        if (!may_mount) return;
        fill_up(report, [&](size_t bytes) {
            const std::string size = "size=" + std::to_string(bytes);
            if (mount("tmpfs", folder.c_str(), "tmpfs", MS_REMOUNT, size.c_str()) != 0)
                report.fail("the file system cannot be resized");
            return folder + "/image";
        });
        mount("tmpfs", folder.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr);
        report.step("a file system that can only be read");
        if (const std::string wrong = refused(folder + "/image"); !wrong.empty()) report.fail(wrong);
    });
    std::cout << refusals << " images refused on a full file system\n";
    files::remove_all(folder);
}

TEST(Refusal, WhereNoFileCanBeMade) {
    const std::string file = scratch_path();
    std::ofstream(file) << "kept";
    const std::string link = scratch_path();
    files::create_symlink(scratch_path() + "/nowhere", link);
    EXPECT_EQ(refused(file + "/below a file"), "");
    EXPECT_EQ(refused(scratch_path() + "/no/such/folder"), "");
    EXPECT_EQ(refused("/proc/self/image"), "");
    EXPECT_EQ(refused("/proc/sys/image"), "");
    EXPECT_EQ(refused(std::string(5000, 'x')), "");
    EXPECT_EQ(refused(scratch_path() + std::string(300, 'x')), "");
    EXPECT_EQ(refused(link, true), "");
    EXPECT_EQ(refused("/dev/full", true), "");
    EXPECT_EQ(refused("/dev/null", true), "");
    EXPECT_EQ(refused("/", true), "");
    files::remove(file);
    files::remove(link);
}

// A file on the lowest descriptor is moved to another, as a second Close closes the lowest.
TEST(Refusal, WithoutAnotherDescriptorThanTheLowest) {
    scratch_files();
    in_child("the lowest descriptor", [](Report &report) {
        for (bool fails : {false, true}) {
            report.step(fails ? "no other" : "another");
            FileWatch watch;
            {
                const Value file = folder_item(scratch_path());
                const Image image = unconstructed();
                const uint64_t calls = calls_of(System::fcntl);
                SystemFault fault(System::fcntl, fails ? 1 : 2);
                close(0); // the host opens it again when the method returns
                image.call("Constructor", 9, 5, RGBA, 0, file);
                if (calls_of(System::fcntl) != calls + 1) report.fail("it did not come to that");
                if (fields_of(image).Valid == fails) report.fail("Valid is wrong");
            }
            if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
        }
    });
}

TEST(Refusal, WithoutDescriptors) {
    scratch_files();
    in_child("no descriptors", [](Report &report) {
        report.step("none left");
        FileWatch watch;
        {
            const Value file = folder_item(scratch_path());
            const Image image = unconstructed();
            rlimit limit = {};
            getrlimit(RLIMIT_NOFILE, &limit);
            const rlimit none = {0, limit.rlim_max};
            setrlimit(RLIMIT_NOFILE, &none);
            image.call("Constructor", 9, 5, RGBA, 0, file);
            setrlimit(RLIMIT_NOFILE, &limit);
            if (fields_of(image).Valid) report.fail("the image is Valid");
        }
        if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
    });
}

// Rights are those of a user who is not root; where the tests do not run as root, their own folder is closed to them.
TEST(Refusal, WithoutTheRightTo) {
    const std::string folder = scratch_path();
    files::create_directory(folder);
    const std::string inside = folder + "/image", foreign = folder + "/foreign";
    std::ofstream(foreign) << "kept";
    in_child("rights", [&](Report &report) {
        const auto expect_refused = [&](const char *step, const std::string &path, bool stays) {
            report.step(step);
            if (const std::string wrong = refused(path, stays); !wrong.empty()) report.fail(wrong);
        };
        files::permissions(foreign, files::perms(0400));
        files::permissions(folder, files::perms(0555));
        files::permissions(files::path(folder).parent_path(), files::perms(0755));
        constexpr uid_t nobody = 65534;
        if (geteuid() == 0 && seteuid(nobody) != 0) return report.fail("the rights cannot be given up");
        expect_refused("a folder that cannot be written to", inside, false);
        expect_refused("a file that cannot be written to", foreign, true);
        // The owner's rights are needed to close it.
        if (seteuid(0) != 0) (void)seteuid(getuid());
        files::permissions(folder, files::perms(0666));
        if (geteuid() == 0 && seteuid(nobody) != 0) return report.fail("the rights cannot be given up");
        expect_refused("a folder that cannot be searched", inside, false);
        if (seteuid(0) != 0) (void)seteuid(getuid());
    });
    files::permissions(folder, files::perms(0700));
    EXPECT_TRUE(files::exists(foreign));
    files::remove_all(folder);
}

// A signal may come at any time.
TEST(Reservation, ThatIsInterruptedIsTakenUpAgain) {
    const uint64_t before = calls_of(System::fallocate);
    SystemFault fault(System::fallocate, 1, false, Manner::error, EINTR);
    const Image image = in_file(RGBA);
    EXPECT_TRUE(fault.reached());
    EXPECT_EQ(calls_of(System::fallocate) - before, 2u);
}

TEST(Reservation, ThatIsAlwaysInterruptedFails) {
    SystemFault fault(System::fallocate, 1, true, Manner::error, EINTR);
    EXPECT_EQ(refused(scratch_path()), "");
}

TEST(Reservation, WithoutRoomOrWithADamagedDiskFails) {
    for (int error : {ENOSPC, EDQUOT, EFBIG, EIO}) {
        SystemFault fault(System::fallocate, 1, false, Manner::error, error);
        EXPECT_EQ(refused(scratch_path()), "") << error;
        EXPECT_TRUE(fault.reached());
    }
}

TEST(Reservation, ThatTheFileSystemDoesNotOfferIsDoneWithout) {
    for (int error : {EOPNOTSUPP, ENOSYS, EINVAL}) {
        SystemFault fault(System::fallocate, 1, false, Manner::error, error);
        EXPECT_TRUE(fields_of(in_file(RGBA)).Valid) << error;
        EXPECT_TRUE(fault.reached());
    }
}

} // namespace
} // namespace kzb::test

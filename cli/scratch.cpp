#include "scratch.h"

#include "catalogue.h"
#include "host.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace kzb::cli {

namespace {

std::string folder;
std::string trouble;

// Signals wait while a file has a name.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld &) = delete;
    SignalsHeld &operator=(const SignalsHeld &) = delete;

private:
    sigset_t before_;
};

// A new picture over the file; nil when that fails.
Value picture_over(const std::string &path, int32_t width, int32_t height, int32_t image_format) {
    const Value file = Value::object(reinterpret_cast<KZBObject>(kzb_folder_item_new(path.c_str())));
    if (file.is_nil()) return file;
    // The larger the blocks, the fewer times a turn maps each of them.
    constexpr int64_t block_size = 64 << 20;
    const kzb_value arguments[] = {Value::integer(width).get(), Value::integer(height).get(),
                                   Value::integer(image_format).get(), Value::integer(block_size).get(), file.get()};
    const Value picture = make(picture_class, arguments);
    return property(picture, "Valid") != 0 ? picture : Value();
}

// A file that never has a name goes with its picture, however the process ends.
Value picture_in_nameless_file(int32_t width, int32_t height, int32_t image_format) {
    const int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0) return Value();
    const Value picture =
        picture_over(std::string("/proc/self/fd/").append(std::to_string(descriptor)), width, height, image_format);
    close(descriptor);
    return picture;
}

// Where the file system knows none, the file loses its name at once.
Value picture_in_named_file(int32_t width, int32_t height, int32_t image_format) {
    const SignalsHeld held;
    std::string path = folder + "/kzb-XXXXXX";
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0) return Value();
    close(descriptor);
    const Value picture = picture_over(path, width, height, image_format);
    unlink(path.c_str());
    return picture;
}

// The event of the factory.
KZBObject new_picture(KZBObject, int32_t width, int32_t height, int32_t image_format) noexcept {
    try {
        Value picture = picture_in_nameless_file(width, height, image_format);
        if (picture.is_nil()) picture = picture_in_named_file(width, height, image_format);
        if (!picture.is_nil()) {
            kzb_retain(&picture.get());
            return picture.get().object;
        }
    } catch (const CallFailure &) {
    } catch (const std::bad_alloc &) {
    }
    trouble = "; " + std::to_string(width) + " x " + std::to_string(height) + " pixels find no room in " + folder +
              " (--scratch)";
    return nullptr;
}

} // namespace

void keep_pictures_in(const std::string &wanted) {
    struct stat status;
    if (stat(wanted.c_str(), &status) != 0)
        fail(Exit::usage, "--scratch " + wanted + ": " + std::generic_category().message(errno) +
                              "; name a folder with room for the pictures");
    if (!S_ISDIR(status.st_mode) || access(wanted.c_str(), W_OK | X_OK) != 0)
        fail(Exit::usage, "--scratch " + wanted +
                              ": no files can be made there; name a folder with room for the "
                              "pictures");
    char *resolved = realpath(wanted.c_str(), nullptr);
    folder = resolved != nullptr ? resolved : wanted;
    std::free(resolved);
    const Value factory = make("PictureFactoryKZB", {});
    CallFailure failure = {};
    if (!kzb_handle_event(factory.get().object, "NewPictureKZB", reinterpret_cast<KZBFunction>(new_picture),
                          &failure.error))
        throw failure;
    call_shared("PictureFactoryKZB", "SetFactory", {factory});
}

const std::string &scratch_folder() {
    return folder;
}

std::string scratch_hint() {
    return std::exchange(trouble, "");
}

} // namespace kzb::cli

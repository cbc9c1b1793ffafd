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

// A new picture over a file of its own, which loses its name at once: it goes with the picture, however the process
// ends. Nil when that fails.
Value picture_in_file(int32_t width, int32_t height, int32_t image_format) {
    const SignalsHeld held;
    std::string path = folder + "/kzb-XXXXXX";
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0) return Value();
    close(descriptor);
    const Value file = Value::object(reinterpret_cast<KZBObject>(kzb_folder_item_new(path.c_str())));
    // The least size that the module accepts is the best one: blocks of 16 megabytes.
    const kzb_value arguments[] = {Value::integer(width).get(), Value::integer(height).get(),
                                   Value::integer(image_format).get(), Value::integer(0).get(), file.get()};
    Value picture;
    if (!file.is_nil()) picture = make(picture_class, arguments);
    unlink(path.c_str());
    return !picture.is_nil() && property(picture, "Valid") != 0 ? picture : Value();
}

// The event of the factory.
KZBObject new_picture(KZBObject, int32_t width, int32_t height, int32_t image_format) noexcept {
    try {
        const Value picture = picture_in_file(width, height, image_format);
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

// The module's one exported function.

#include "host/constants.h"
#include "host/entry_points.h"
#include "host/registration.h"
#include "image/mapped_store.h"

#include <cstdlib>
#include <ctime>

namespace kzb {

namespace {

constinit double host_version = 0;

int32_t start(KZBResolver resolver) {
    set_resolver(resolver);
    // A host without this one is not supported.
    reinterpret_cast<RegisterPluginVersionFunction *>(resolve("RegisterPluginVersion"))(KZB_INTERFACE_VERSION);
    if (auto *version = reinterpret_cast<REALGetRBVersionFunction *>(resolve("REALGetRBVersion")))
        host_version = version();
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    read_page_size();
    static constinit bool constants_built = false;
    if (!constants_built) {
        const auto constants = picture_constants();
        build_constant_declarations(constants.data(), static_cast<int32_t>(constants.size()), 0, false, false);
        constants_built = true;
    }
    return register_classes();
}

} // namespace

} // namespace kzb

extern "C" [[gnu::visibility("default")]] int32_t REALPluginMain(KZBResolver resolver) {
    try {
        return kzb::start(resolver);
    } catch (...) {
        return 0;
    }
}

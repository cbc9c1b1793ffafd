#include "peers.h"

#include <dlfcn.h>

#include <iostream>

namespace kzb::bench {

namespace {

struct Known {
    const char *name, *file, *origin;
};

constexpr Known known[] = {
    {"OpenCV", "opencv.so", "Debian's libopencv-dev"},
    {"libvips", "libvips.so", "Debian's libvips42"},
    {"libvips-new", "libvips_new.so", "the npm registry's @img/sharp-libvips-linux-x64"},
    {"libyuv", "libyuv.so", "Debian's libyuv-dev"},
    {"zimg", "zimg.so", "Debian's libzimg-dev"},
    {"libswscale", "swscale.so", "Debian's libswscale-dev"},
    {"libavfilter", "avfilter.so", "Debian's libavfilter-dev"},
    {"GraphicsMagick", "graphicsmagick.so", "Debian's libgraphicsmagick1-dev"},
    {"pixman", "pixman.so", "Debian's libpixman-1-dev"},
};

} // namespace

std::vector<LoadedPeer> load_peers(const std::string &folder) {
    std::vector<LoadedPeer> loaded;
    for (const Known &candidate : known) {
        const auto missing = [&](const std::string &why) {
            std::cerr << candidate.name << " is missing (" << candidate.origin << "): " << why << '\n';
        };
        // Each with its own dependencies first: two peers may carry the same names.
        void *library = dlopen((folder + "/" + candidate.file).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
        if (library == nullptr) {
            missing(dlerror());
            continue;
        }
        auto *give = reinterpret_cast<PeerFunction *>(dlsym(library, "kzb_bench_peer"));
        Peer *peer = give == nullptr ? nullptr : give();
        if (peer == nullptr)
            missing("it cannot be used");
        else
            loaded.push_back({candidate.name, peer});
    }
    return loaded;
}

} // namespace kzb::bench

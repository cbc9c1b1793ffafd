#include "platform/simulation.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

struct SimulatedText {
    int references = 1;
    std::u16string units;
};
struct SimulatedURL {
    int references = 1;
    std::u16string path;
};
struct SimulatedPort {
    PixMap map = {};
    PixMap *master = &map;
    std::vector<char> pixels;
    int locks = 0;
    bool disposed = false;
};

namespace kzb::test::simulated {

namespace {

constexpr uint16_t map_flags = 0xC000;
constexpr OSErr memory_full = -108;
constexpr OSErr no_such_file = -43;

struct State {
    // Kept after their release, so that later uses are seen.
    std::vector<std::unique_ptr<SimulatedText>> texts;
    std::vector<std::unique_ptr<SimulatedURL>> urls;
    std::vector<std::unique_ptr<SimulatedPort>> ports;
    std::vector<std::u16string> paths; // by the number inside an FSRef or FSSpec, less 1
    std::vector<std::string> calls;
    std::map<std::string, int> counts;
    std::string failing;
    int failing_nth = 0;
    int mistakes = 0;
};

State state;

// Notes the call; true when it is to fail.
bool fails(const char *function) {
    state.calls.emplace_back(function);
    return ++state.counts[function] == state.failing_nth && state.failing == function;
}

int *references_of(CFTypeRef object) {
    for (const auto &text : state.texts)
        if (text.get() == object) return &text->references;
    for (const auto &url : state.urls)
        if (url.get() == object) return &url->references;
    return nullptr;
}

// Counts the use of what is not, or no longer, an object.
bool alive(CFTypeRef object) {
    const int *references = references_of(object);
    const bool well = references != nullptr && *references > 0;
    if (!well) ++state.mistakes;
    return well;
}

SimulatedText *new_text(std::u16string units) {
    state.texts.push_back(std::make_unique<SimulatedText>());
    state.texts.back()->units = std::move(units);
    return state.texts.back().get();
}

CFURLRef new_url(std::u16string path) {
    state.urls.push_back(std::make_unique<SimulatedURL>());
    state.urls.back()->path = std::move(path);
    return state.urls.back().get();
}

const std::u16string *path_numbered(uint32_t number) {
    return number >= 1 && number <= state.paths.size() ? &state.paths[number - 1] : nullptr;
}

uint32_t add_path(const std::u16string &path) {
    state.paths.push_back(path);
    return static_cast<uint32_t>(state.paths.size());
}

SimulatedPort *port_of(PixMapHandle map) {
    for (const auto &port : state.ports)
        if (&port->master == map && !port->disposed) return port.get();
    ++state.mistakes;
    return nullptr;
}

PixMapHandle map_of(GWorldPtr world) {
    if (world != nullptr && !world->disposed) return &world->master;
    ++state.mistakes;
    return nullptr;
}

} // namespace

void reset() {
    state = {};
}

FSRef reference_to(const std::u16string &path) {
    FSRef reference = {};
    const uint32_t number = add_path(path);
    std::memcpy(reference.hidden, &number, sizeof number);
    return reference;
}

FSSpec older_reference_of(const std::u16string &path) {
    FSSpec older_reference = {};
    older_reference.folder = static_cast<int32_t>(add_path(path));
    return older_reference;
}

void fail(const std::string &function, int nth) {
    state.failing = function;
    state.failing_nth = nth;
}

const std::vector<std::string> &calls() {
    return state.calls;
}

Left left() {
    Left result;
    for (const auto &text : state.texts) result.objects += text->references;
    for (const auto &url : state.urls) result.objects += url->references;
    for (const auto &port : state.ports) {
        result.worlds += port->disposed ? 0 : 1;
        result.locks += port->locks;
    }
    result.mistakes = state.mistakes;
    return result;
}

GWorldPtr world_of(int32_t width, int32_t height, int16_t depth) {
    auto port = std::make_unique<SimulatedPort>();
    const int32_t row_bytes = (width * (depth / 8) + 15) / 16 * 16 + 16;
    port->pixels.resize(static_cast<size_t>(row_bytes) * static_cast<size_t>(height));
    for (size_t i = 0; i < port->pixels.size(); ++i) port->pixels[i] = static_cast<char>(i * 37 + 11);
    port->map = {port->pixels.data(), static_cast<uint16_t>(row_bytes | map_flags), depth};
    state.ports.push_back(std::move(port));
    return state.ports.back().get();
}

} // namespace kzb::test::simulated

using namespace kzb::test::simulated;

CFTypeRef CFRetain(CFTypeRef object) {
    fails("CFRetain");
    if (alive(object)) ++*references_of(object);
    return object;
}

void CFRelease(CFTypeRef object) {
    fails("CFRelease");
    if (alive(object)) --*references_of(object);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const uint16_t *characters, CFIndex count) {
    if (fails("CFStringCreateWithCharacters")) return nullptr;
    return new_text(std::u16string(characters, characters + count));
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef text) {
    if (fails("CFStringCreateMutableCopy") || !alive(text)) return nullptr;
    return new_text(text->units);
}

void CFStringNormalize(CFMutableStringRef text, CFStringNormalizationForm form) {
    fails("CFStringNormalize");
    if (!alive(text) || form != kCFStringNormalizationFormD) return;
    static const std::map<char16_t, std::u16string> decomposed = {{u'\u00E9', u"e\u0301"}, {u'\u00FC', u"u\u0308"}};
    std::u16string result;
    for (char16_t unit : text->units) {
        const auto found = decomposed.find(unit);
        result += found == decomposed.end() ? std::u16string(1, unit) : found->second;
    }
    text->units = result;
}

CFIndex CFStringGetLength(CFStringRef text) {
    fails("CFStringGetLength");
    return alive(text) ? static_cast<CFIndex>(text->units.size()) : 0;
}

// Units of up to three bytes; no pairs.
Boolean CFStringGetCString(CFStringRef text, char *buffer, CFIndex size, CFStringEncoding encoding) {
    if (fails("CFStringGetCString") || !alive(text) || encoding != kCFStringEncodingUTF8) {
        std::fill_n(buffer, std::min<CFIndex>(size, 3), '?');
        return 0;
    }
    std::string bytes;
    for (char16_t unit : text->units) {
        if (unit < 0x80) {
            bytes += static_cast<char>(unit);
        } else if (unit < 0x800) {
            bytes += static_cast<char>(0xC0 | unit >> 6);
            bytes += static_cast<char>(0x80 | (unit & 0x3F));
        } else {
            bytes += static_cast<char>(0xE0 | unit >> 12);
            bytes += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
            bytes += static_cast<char>(0x80 | (unit & 0x3F));
        }
    }
    if (static_cast<CFIndex>(bytes.size()) >= size) return 0;
    std::copy_n(bytes.c_str(), bytes.size() + 1, buffer);
    return 1;
}

OSErr FSpMakeFSRef(const FSSpec *older_reference, FSRef *reference) {
    if (fails("FSpMakeFSRef")) return no_such_file;
    const auto number = static_cast<uint32_t>(older_reference->folder);
    if (path_numbered(number) == nullptr) return no_such_file;
    std::memcpy(reference->hidden, &number, sizeof number);
    return 0;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef, const FSRef *reference) {
    uint32_t number = 0;
    std::memcpy(&number, reference->hidden, sizeof number);
    const std::u16string *path = path_numbered(number);
    return fails("CFURLCreateFromFSRef") || path == nullptr ? nullptr : new_url(*path);
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef url, CFStringRef component,
                                               Boolean is_directory) {
    if (fails("CFURLCreateCopyAppendingPathComponent") || !alive(url) || !alive(component)) return nullptr;
    return new_url(url->path + u"/" + component->units + (is_directory ? u"/" : u""));
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
    if (fails("CFURLCopyFileSystemPath") || !alive(url) || style != kCFURLPOSIXPathStyle) return nullptr;
    return new_text(url->path);
}

OSErr NewGWorld(GWorldPtr *world, int16_t depth, const Rect *bounds, CTabHandle, GDHandle, uint32_t) {
    *world = nullptr;
    if (fails("NewGWorld")) return memory_full;
    *world = world_of(bounds->right - bounds->left, bounds->bottom - bounds->top, depth);
    return 0;
}

void DisposeGWorld(GWorldPtr world) {
    fails("DisposeGWorld");
    if (map_of(world) != nullptr) world->disposed = true;
}

PixMapHandle GetGWorldPixMap(GWorldPtr world) {
    return fails("GetGWorldPixMap") ? nullptr : map_of(world);
}

PixMapHandle GetPortPixMap(CGrafPtr port) {
    return fails("GetPortPixMap") ? nullptr : map_of(port);
}

Boolean LockPixels(PixMapHandle map) {
    SimulatedPort *port = port_of(map);
    if (fails("LockPixels") || port == nullptr) return 0;
    ++port->locks;
    return 1;
}

void UnlockPixels(PixMapHandle map) {
    fails("UnlockPixels");
    SimulatedPort *port = port_of(map);
    if (port != nullptr && --port->locks < 0) ++state.mistakes;
}

Ptr GetPixBaseAddr(PixMapHandle map) {
    return fails("GetPixBaseAddr") || port_of(map) == nullptr ? nullptr : (*map)->baseAddr;
}

long GetPixRowBytes(PixMapHandle map) {
    fails("GetPixRowBytes");
    return port_of(map) == nullptr ? 0 : (*map)->rowBytes & ~map_flags;
}

int16_t GetPixDepth(PixMapHandle map) {
    if (fails("GetPixDepth")) return 1;
    return port_of(map) == nullptr ? int16_t{0} : (*map)->pixelSize;
}

uint32_t TickCount() {
    fails("TickCount");
    return ticks;
}

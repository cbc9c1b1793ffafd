#include "host/entry_points.h"

namespace kzb {

namespace {
constinit KZBResolver host_resolver = nullptr;
}

void set_resolver(KZBResolver resolver) { host_resolver = resolver; }

void *resolve(const char *name) { return host_resolver == nullptr ? nullptr : host_resolver(name); }

} // namespace kzb

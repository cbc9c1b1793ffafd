// The embedded host's entry points, which here can be missing, fail, be replaced, and tell that they were called.
#pragma once

#include <functional>
#include <picturekzb/host_interface.h>
#include <string>
#include <vector>

namespace kzb::cli::check {

struct HostEntry {
    const char *name;
    bool has_result;   // a module can tell that the call failed
    bool starts;       // needed to register anything
    bool missing;      // the resolver gives nil
    bool fails_next;   // the next call does nothing and gives 0 or nil
    void *function;    // called in the end
    void *interceptor; // what modules get
};

// Every entry point of the interface.
std::vector<HostEntry> &host_entries();
HostEntry &host_entry(const std::string &name);

// The resolver that gives them.
void *resolve_entry(const char *name);

// Called with the name at each call of an entry point, before it has an effect; empty: nobody is.
extern std::function<void(const char *)> on_entry_called;

} // namespace kzb::cli::check

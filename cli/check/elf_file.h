// What a shared library's file says about itself, read without loading it.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kzb::cli::check {

struct ElfFile {
    bool is_shared = false;
    bool for_this_machine = false;
    bool has_symbols = false;          // the file has a table of dynamic symbols, so that `exported` is complete
    std::vector<std::string> exported; // names that other libraries can use
    std::vector<std::string> needed;   // libraries, by their names
};

// Nothing for a file that cannot be read or is no ELF file. Damaged tables give fewer names, never a crash.
std::optional<ElfFile> read_elf(const std::string &path);

} // namespace kzb::cli::check

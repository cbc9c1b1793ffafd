#include "elf_file.h"

#include <algorithm>
#include <cstring>
#include <elf.h>
#include <fstream>
#include <iterator>
#include <link.h>

namespace kzb::cli::check {

namespace {

// The machine and byte order of this program, as its own file's head would state them.
#if defined(__x86_64__)
constexpr int machine = EM_X86_64;
#elif defined(__i386__)
constexpr int machine = EM_386;
#elif defined(__aarch64__)
constexpr int machine = EM_AARCH64;
#elif defined(__arm__)
constexpr int machine = EM_ARM;
#elif defined(__powerpc64__)
constexpr int machine = EM_PPC64;
#elif defined(__powerpc__)
constexpr int machine = EM_PPC;
#elif defined(__s390x__)
constexpr int machine = EM_S390;
#elif defined(__riscv)
constexpr int machine = EM_RISCV;
#else
constexpr int machine = -1; // left to the loader
#endif
constexpr int file_class = sizeof(void *) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr int byte_order = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? ELFDATA2MSB : ELFDATA2LSB;

// Reads from the bytes of a file; what lies outside is absent.
class Reader {
public:
    explicit Reader(std::string bytes) : bytes_(std::move(bytes)) {}

    template <class Record> std::optional<Record> at(size_t offset) const {
        if (offset > bytes_.size() || sizeof(Record) > bytes_.size() - offset) return std::nullopt;
        Record record;
        std::memcpy(&record, bytes_.data() + offset, sizeof record);
        return record;
    }

    // Every record of a section.
    template <class Record> std::vector<Record> all(const ElfW(Shdr) & section) const {
        std::vector<Record> records;
        for (size_t place = 0; place + sizeof(Record) <= section.sh_size; place += sizeof(Record)) {
            const auto record = at<Record>(section.sh_offset + place);
            if (!record) break;
            records.push_back(*record);
        }
        return records;
    }

    std::string text(const ElfW(Shdr) & section, size_t offset) const {
        if (offset >= section.sh_size || section.sh_offset >= bytes_.size()) return "";
        const size_t start = section.sh_offset + offset;
        if (start >= bytes_.size()) return "";
        return bytes_.c_str() + start;
    }

    std::vector<ElfW(Shdr)> sections(const ElfW(Ehdr) & head) const {
        std::vector<ElfW(Shdr)> all;
        for (size_t i = 0; i < head.e_shnum; ++i)
            if (const auto section = at<ElfW(Shdr)>(head.e_shoff + i * sizeof(ElfW(Shdr)))) all.push_back(*section);
        return all;
    }

private:
    std::string bytes_;
};

bool is_exported(const ElfW(Sym) & symbol) {
    const int binding = symbol.st_info >> 4, kind = symbol.st_info & 15, visibility = symbol.st_other & 3;
    return symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS && binding != STB_LOCAL &&
           (kind == STT_FUNC || kind == STT_OBJECT || kind == STT_NOTYPE || kind == STT_TLS || kind == STT_GNU_IFUNC) &&
           (visibility == STV_DEFAULT || visibility == STV_PROTECTED);
}

} // namespace

std::optional<ElfFile> read_elf(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    const Reader file(std::string(std::istreambuf_iterator<char>(stream), {}));
    const auto head = file.at<ElfW(Ehdr)>(0);
    if (!head || std::memcmp(head->e_ident, ELFMAG, SELFMAG) != 0) return std::nullopt;
    ElfFile found;
    found.for_this_machine = head->e_ident[EI_CLASS] == file_class && head->e_ident[EI_DATA] == byte_order &&
                             (machine < 0 || head->e_machine == machine);
    if (!found.for_this_machine) return found; // its records have another shape
    found.is_shared = head->e_type == ET_DYN;
    const std::vector<ElfW(Shdr)> sections = file.sections(*head);
    for (const ElfW(Shdr) & section : sections) {
        if (section.sh_link >= sections.size()) continue;
        const ElfW(Shdr) &texts = sections[section.sh_link];
        if (section.sh_type == SHT_DYNSYM) {
            found.has_symbols = true;
            for (const auto &symbol : file.all<ElfW(Sym)>(section))
                if (is_exported(symbol)) found.exported.push_back(file.text(texts, symbol.st_name));
        }
        if (section.sh_type == SHT_DYNAMIC)
            for (const auto &entry : file.all<ElfW(Dyn)>(section))
                if (entry.d_tag == DT_NEEDED) found.needed.push_back(file.text(texts, entry.d_un.d_val));
    }
    std::sort(found.exported.begin(), found.exported.end());
    return found;
}

} // namespace kzb::cli::check

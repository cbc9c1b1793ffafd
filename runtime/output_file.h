// A file that appears under its name only when it is whole.
#ifndef KZB_RUNTIME_OUTPUT_FILE_H
#define KZB_RUNTIME_OUTPUT_FILE_H

#include <cstddef>
#include <cstdio>
#include <string>

namespace kzb {

// Writes to a temporary name in the folder of `path`; commit() gives the file its name. Without that the destructor
// removes it, and what had the name before is untouched.
class OutputFile {
public:
    explicit OutputFile(const char *path);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    bool write(const void *bytes, size_t count);
    bool commit();

    // Why opening, writing or committing failed, as an errno; 0: it did not.
    int error() const { return failure; }

private:
    bool fail();

    std::string name, temporary;
    std::FILE *file = nullptr;
    int failure = 0;
};

} // namespace kzb

#endif

// A file that appears under its name only when it is whole.
#ifndef KZB_RUNTIME_OUTPUT_FILE_H
#define KZB_RUNTIME_OUTPUT_FILE_H

#include "unfinished_files.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace kzb {

// Writes to a temporary name in the folder of `path`; commit() gives the file its name. Without that the destructor
// removes it, and what had the name before is untouched. What is reached through a link is replaced, not the link.
// An empty path is standard output, and a device or a pipe is written to as it is: there, commit() only waits for the
// last bytes.
class OutputFile {
public:
    // `seeks`: seek() and read() will be used; standard output then gets all with commit().
    explicit OutputFile(const std::string &path, bool seeks = false);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    bool write(const void *bytes, size_t count);
    bool commit();

    // For formats that go back to what they wrote; -1: failed.
    int64_t seek(int64_t offset, int whence);
    size_t read(void *bytes, size_t count);

    // Why opening, writing or committing failed, as an errno; 0: it did not.
    int error() const { return failure; }

private:
    void open_stream(bool seeks);
    void open_beside();
    bool copy_to_stream();
    bool fail();

    std::string name, temporary;
    UnfinishedFile unfinished;
    std::FILE *file = nullptr;
    int stream = -1; // what commit() copies to
    int failure = 0;
};

} // namespace kzb

#endif

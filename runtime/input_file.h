// A file that is read once from front to back through one buffer; it may be a pipe, and "-" is standard input.
#ifndef KZB_RUNTIME_INPUT_FILE_H
#define KZB_RUNTIME_INPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace kzb {

class InputFile {
public:
    explicit InputFile(const char *path);
    ~InputFile();
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    // Bytes that were read and not yet taken.
    const uint8_t *next() const { return buffer.get() + position; }
    size_t available() const { return end - position; }
    void take(size_t count) { position += count; }

    // Reads on when nothing is available. False: the file has ended, or could not be read.
    bool fill();

    // Reads until `count` bytes (at most 64) are available, for looking at the start of the file; false: fewer are
    // left.
    bool peek(size_t count);

    // All that is left, at most `most` bytes. False: the file could not be read, or has more.
    bool take_all(std::vector<uint8_t> &bytes, size_t most);

    // The file as one that can be read anywhere; a pipe is first copied into a file without a name in `folder`. -1:
    // that failed, error() tells.
    int seekable(const char *folder);

    // Why the file could not be opened or read, as an errno; 0: it could.
    int error() const { return failure; }

    // Whether somebody wanted to read beyond the file's last byte.
    bool ended() const { return at_end; }

    // The length of a regular file; UINT64_MAX for anything else.
    uint64_t size() const { return length; }

private:
    size_t read_to(uint8_t *bytes, size_t count);

    std::unique_ptr<uint8_t[]> buffer;
    size_t position = 0, end = 0;
    int descriptor = -1, failure = 0;
    bool at_end = false;
    uint64_t length = UINT64_MAX;
};

} // namespace kzb

#endif

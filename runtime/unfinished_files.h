// The names of files that are being written and must not stay when the process is ended by a signal.
#ifndef KZB_RUNTIME_UNFINISHED_FILES_H
#define KZB_RUNTIME_UNFINISHED_FILES_H

#include <cstddef>
#include <string>

namespace kzb {

// Notes a name while this object lives. A name too long for a note, or one too many, is not noted.
class UnfinishedFile {
public:
    UnfinishedFile() = default;
    ~UnfinishedFile() { forget(); }
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;

    void note(const std::string &name) noexcept;
    void forget() noexcept;

private:
    size_t place_ = 0; // from 1; 0: nowhere
};

} // namespace kzb

#endif

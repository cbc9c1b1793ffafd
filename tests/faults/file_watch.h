// Holds a stretch of a test to leaving no file behind.
#pragma once

#include "faults/watch.h"

namespace kzb::test {

// What a call leaves behind beside what Watch sees. One call that failed may have left one.
class FileWatch {
public:
    std::string difference(size_t more_files = 0, size_t more_mappings = 0) {
        std::string text = watch_.difference();
        if (scratch_files() > files_ + more_files) text += ", a file is left";
        if (file_mappings() > mappings_ + more_mappings) text += ", a mapping is left";
        return text;
    }

private:
    Watch watch_;
    size_t files_ = scratch_files();
    size_t mappings_ = file_mappings();
};

} // namespace kzb::test

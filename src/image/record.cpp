#include "image/record.h"

#include "host/classes.h"

namespace kzb {

ImageRecord *record_of(ImageObject image) {
    if (image == nullptr) return nullptr;
    return reinterpret_cast<ImageRecord *>(reinterpret_cast<char *>(image) + picture_class.instance_data_offset);
}

bool parents_have_storage(const ImageRecord &image) {
    for (const ImageRecord *view = &image; view->Parent != nullptr;) {
        const ImageRecord *parent = record_of(view->Parent);
        // A closed parent has no storage, one built anew has another.
        if (parent->storage_id != view->storage_id) return false;
        view = parent;
    }
    return true;
}

uint64_t next_storage_id() {
    static constinit uint64_t last = 0;
    return ++last;
}

} // namespace kzb

#include "image/record.h"

#include "host/classes.h"

namespace kzb {

ImageRecord *record_of(ImageObject image) {
    if (image == nullptr) return nullptr;
    return reinterpret_cast<ImageRecord *>(reinterpret_cast<char *>(image) + picture_class.instance_data_offset);
}

bool storage_present(const ImageRecord &image) {
    if (image.row_accessor == nullptr) return false;
    for (const ImageRecord *view = &image; view->Parent != nullptr;) {
        const ImageRecord *parent = record_of(view->Parent);
        // A closed parent has no storage, one built anew has another.
        if (parent->storage_id != view->storage_id) return false;
        view = parent;
    }
    return true;
}

bool usable(const ImageRecord &image) {
    return image.Valid && storage_present(image) && image.pixel_buffer != nullptr && image.Height != 0;
}

uint64_t next_storage_id() {
    static constinit uint64_t last = 0;
    return ++last;
}

} // namespace kzb

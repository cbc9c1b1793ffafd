// Folder items: paths as the host's language holds them.
#ifndef KZB_RUNTIME_FOLDER_ITEM_H
#define KZB_RUNTIME_FOLDER_ITEM_H

#include "object.h"

namespace kzb {

extern const ObjectClass folder_item_class;

} // namespace kzb

#endif

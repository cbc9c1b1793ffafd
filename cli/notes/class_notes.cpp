#include "class_notes.h"

#include "runtime/names.h"

namespace kzb::cli {

namespace {

struct Note {
    const char *name;
    const char *sentence;
};

constexpr Note properties[] = {
    {"YieldTicks", "How often long operations let the host run its events, in ticks of 1/60 second; 0: never."},
    {"RedOffset", "Where red lies within a pixel, in bytes; 0 without red."},
    {"GreenOffset", "Where green lies within a pixel, in bytes; 0 without green."},
    {"BlueOffset", "Where blue lies within a pixel, in bytes; 0 without blue."},
    {"GrayOffset", "Where gray lies within a pixel, in bytes; 0 without gray."},
    {"AlphaOffset", "Where alpha lies within a pixel, in bytes; 0 without alpha."},
    {"Width", "Pixels in a row."},
    {"Height", "Rows."},
    {"PixelSize", "Bytes from one pixel to the next."},
    {"RowSize", "Bytes from one row to the next."},
    {"ImageFormat", "The layout: one of the constants ImageFormat..."},
    {"ImageFormatString", "The layout's short name; that of ImageFormatRGBA reads \"RBBA\", those above 14 are empty."},
    {"MappingBlockSize", "Bytes of the scratch file that are mapped at a time."},
    {"RowOffset", "The row of the storage that is this picture's row 0; not 0 in a ClipImage."},
    {"DebugPictureEnabled", "Whether DebugPicture gives a picture."},
    {"DebugPicture", "The upper left 512 x 512 pixels with their mask, for a debugger; nil unless it is enabled."},
    {"IsGray", "Whether the layout is a gray one."},
    {"IsRGB", "Whether the layout is a coloured one."},
    {"HasGreen", "Whether there is green."},
    {"HasRed", "Whether there is red."},
    {"HasBlue", "Whether there is blue."},
    {"HasGray", "Whether there is gray."},
    {"HasAlpha", "Whether there is alpha."},
    {"Valid", "Whether the constructor succeeded. Stays true after Close."},
    {"IsMapping", "Whether the pixels are in a scratch file."},
    {"Parent", "The picture whose pixels a view shares; nil for others."},
    {"Factory", "Is asked first when an operation on this picture needs a new one."},
    {"Target", "The picture of the host whose pixels these are; nil for others."},
    {"Memory", "A block at the first byte of the storage, without a size of its own."},
    {"MemoryTarget", "The memory block whose bytes these pixels are; nil for others."},
    {"TotalSize", "Bytes of storage: RowSize x Height; a view has its parent's."},
};

constexpr Note classes[] = {
    {"PictureKZB", "A picture: 8-bit channels in one of twenty layouts, in memory or in a file."},
    {"PictureFactoryKZB", "Supplies the pictures that operations make: subclass it, or handle its event."},
};

constexpr Note shared[] = {
    {"CreatePictureKZB", "A new picture from the process's factory, or else in memory; nil when there is neither."},
    {"SetFactory", "Makes a factory the process's own; nil takes it away."},
    {"NewPictureKZB",
     "Is asked for a picture of a size and layout. Nil, or one that is not Valid, passes the question on."},
};

constexpr ConstantGroup groups[] = {
    {"ImageFormat", "Layouts",
     "The order of the bytes in a pixel; X is an unused byte. 1of3 to 4of4 are one byte of a wider pixel, and the "
     "names "
     "below them say which byte of which layout that is."},
    {"Scale", "Scaling filters", "From the softest and quickest to the sharpest."},
    {"Dither", "Dither patterns", "The size in the name is that of the pattern, in pixels."},
};

template <class Notes> const char *find(const Notes &notes, std::string_view name) {
    for (const Note &note : notes)
        if (same_name(note.name, name)) return note.sentence;
    return nullptr;
}

} // namespace

const char *note_on_property(std::string_view property) {
    return find(properties, property);
}
const char *note_on_class(std::string_view class_name) {
    return find(classes, class_name);
}
const char *note_on_shared(std::string_view name) {
    return find(shared, name);
}

std::span<const ConstantGroup> constant_groups() {
    return groups;
}

} // namespace kzb::cli

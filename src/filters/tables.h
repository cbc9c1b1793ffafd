// Channels sent through tables of 256 bytes.
#pragma once

#include "image/channels.h"
#include "image/destination.h"

namespace kzb {

using Table = std::array<uint8_t, 256>;

// One table for each of the channels that an operation transforms.
struct ChannelTables {
    Channels channels;
    std::array<Table, 4> tables;

    void add(Channel channel, const Table &table) {
        tables[channels.size()] = table;
        channels.add(channel);
    }
};

// Writes the source's channels through their tables to the destination, over the source's width and height.
void apply_tables(ImageRecord &source, ImageRecord &destination, const ChannelTables &tables);

// Sends the rectangle's channels through their tables, in place. The rectangle lies inside the image.
void apply_tables_in_place(ImageRecord &image, const ChannelTables &tables, int32_t x, int32_t y, int32_t width,
                           int32_t height);

// A whole destination filter: build(source) gives its ChannelTables once both images are ready.
template <class Build> ImageObject filter_through_tables(ImageObject image, ImageObject dest, Build build) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    const ChannelTables tables = build(static_cast<const ImageRecord &>(passage->source));
    apply_tables(passage->source, passage->destination, tables);
    return passage->result.release();
}

} // namespace kzb

// The parts of the method table.
#pragma once

#include "faults/arguments.h"
#include "faults/method_table.h"

namespace kzb::test {

using Rows = std::vector<Row>;

void add_image_rows(Rows &rows);
void add_row_access_rows(Rows &rows);
void add_picture_rows(Rows &rows);
void add_geometry_rows(Rows &rows);
void add_filter_rows(Rows &rows);
void add_property_rows(Rows &rows);

// The arguments that follow a filter's destination, and the destination's size.
using MoreArguments = std::function<std::vector<Value>()>;
enum class Turned : bool { no, yes };

// Rows of a method "Name(dest as PictureKZB, ...) as PictureKZB" over the kinds of sources and destinations.
void add_destination_rows(Rows &rows, const std::string &declaration, const MoreArguments &more,
                          Shortage shortage = Shortage::fails, Turned turned = Turned::no);

} // namespace kzb::test

#include "show.h"

#include "terminal_canvas.h"

#include "cli/command_options.h"
#include "cli/host.h"
#include "cli/standard_output.h"

#include <algorithm>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kzb::cli {

namespace {

constexpr int widest = 1000;

// Columns and rows of the terminal at standard output; of a usual one where there is none.
Extent terminal_extent() {
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 1)
        return {size.ws_col, size.ws_row};
    return {80, 25};
}

// The largest size in cells that keeps the picture's proportions; a cell is twice as high as wide. At most `within`,
// one row less so that the prompt fits too, and no cells larger than pixels.
Extent cells_for(int64_t width, int64_t height, Extent within, bool any_height) {
    const double shape = static_cast<double>(height) / static_cast<double>(width) / 2;
    double columns = static_cast<double>(std::min<int64_t>(within.columns, width));
    if (!any_height) columns = std::min(columns, (within.rows - 1) / shape);
    return {std::max(1, static_cast<int>(columns)), std::max(1, static_cast<int>(columns * shape + 0.5))};
}

// The picture's pixels as red, green, blue, alpha.
std::vector<uint8_t> pixels_of(const Value &picture) {
    const GWorld &world = *kzb_picture_world(picture.as_picture());
    const Value mask = Value::picture(kzb_picture_mask(picture.as_picture()));
    const GWorld *alpha = mask.is_nil() ? nullptr : kzb_picture_world(mask.as_picture());
    std::vector<uint8_t> pixels;
    pixels.reserve(static_cast<size_t>(world.width * world.height * 4));
    for (kzb_word y = 0; y < world.height; ++y) {
        const uint8_t *row = static_cast<const uint8_t *>(world.base_address) + y * world.row_bytes;
        const uint8_t *alphas =
            alpha == nullptr ? nullptr : static_cast<const uint8_t *>(alpha->base_address) + y * alpha->row_bytes;
        for (kzb_word x = 0; x < world.width; ++x) {
            pixels.insert(pixels.end(), row + x * 4 + 1, row + x * 4 + 4);
            pixels.push_back(alphas == nullptr ? 255 : alphas[x * 4 + 1]);
        }
    }
    return pixels;
}

} // namespace

Exit run_show(const Words &words) {
    std::string file;
    int width = 0;
    bool plain = false;
    CommandOptions options(
        "show", "kzb show draws a picture in the terminal: in pixels where the terminal can, else in characters "
                "and colours,\nand in characters alone where there is no terminal.");
    options.take("FILE", file, "The picture");
    options.option("--width", width, 1, widest, "Columns; as many as fit when not given");
    options.flag("--plain", plain, "Characters alone");
    if (!options.parse(words)) return Exit::done;
    if (file.empty()) fail(Exit::usage, "there is no FILE; use kzb show FILE");

    kzb_error error = {};
    const Value picture = Value::picture(kzb_picture_read(file.c_str(), nullptr, &error));
    if (picture.is_nil()) fail(Exit::input, error.message);
    const int64_t columns = property(picture, "Width"), rows = property(picture, "Height");
    Extent within = terminal_extent();
    if (width != 0) within.columns = width;
    const Extent cells = cells_for(columns, rows, within, width != 0);
    print(draw_in_terminal(pixels_of(picture), static_cast<int>(columns), static_cast<int>(rows), cells,
                           plain || isatty(STDOUT_FILENO) == 0));
    return Exit::done;
}

} // namespace kzb::cli

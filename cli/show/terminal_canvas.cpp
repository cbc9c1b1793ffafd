#include "terminal_canvas.h"

#include <chafa.h>

#include <memory>

namespace kzb::cli {

namespace {

template <auto release> struct Releaser {
    template <class T> void operator()(T *object) const { release(object); }
};
template <class T, auto release> using Owned = std::unique_ptr<T, Releaser<release>>;

using Config = Owned<ChafaCanvasConfig, chafa_canvas_config_unref>;
using Terminal = Owned<ChafaTermInfo, chafa_term_info_unref>;
using Symbols = Owned<ChafaSymbolMap, chafa_symbol_map_unref>;
using Canvas = Owned<ChafaCanvas, chafa_canvas_unref>;

Terminal this_terminal() {
    gchar **environment = g_get_environ();
    Terminal terminal(chafa_term_db_detect(chafa_term_db_get_default(), environment));
    g_strfreev(environment);
    return terminal;
}

ChafaPixelMode pixels_for(const ChafaTermInfo *terminal) {
    if (chafa_term_info_have_seq(terminal, CHAFA_TERM_SEQ_BEGIN_KITTY_IMMEDIATE_IMAGE_V1))
        return CHAFA_PIXEL_MODE_KITTY;
    if (chafa_term_info_have_seq(terminal, CHAFA_TERM_SEQ_BEGIN_SIXELS)) return CHAFA_PIXEL_MODE_SIXELS;
    return CHAFA_PIXEL_MODE_SYMBOLS;
}

ChafaCanvasMode colours_for(const ChafaTermInfo *terminal) {
    if (chafa_term_info_have_seq(terminal, CHAFA_TERM_SEQ_SET_COLOR_FGBG_DIRECT)) return CHAFA_CANVAS_MODE_TRUECOLOR;
    if (chafa_term_info_have_seq(terminal, CHAFA_TERM_SEQ_SET_COLOR_FGBG_256)) return CHAFA_CANVAS_MODE_INDEXED_240;
    if (chafa_term_info_have_seq(terminal, CHAFA_TERM_SEQ_SET_COLOR_FGBG_16)) return CHAFA_CANVAS_MODE_INDEXED_16;
    return CHAFA_CANVAS_MODE_FGBG;
}

} // namespace

std::string draw_in_terminal(const std::vector<uint8_t> &pixels, int width, int height, Extent cells, bool plain) {
    const Terminal terminal = this_terminal();
    const Symbols symbols(chafa_symbol_map_new());
    // Letters and signs that every terminal has, where there is none to ask.
    chafa_symbol_map_add_by_tags(
        symbols.get(), plain ? CHAFA_SYMBOL_TAG_ASCII
                             : static_cast<ChafaSymbolTags>(CHAFA_SYMBOL_TAG_BLOCK | CHAFA_SYMBOL_TAG_BORDER));
    const Config config(chafa_canvas_config_new());
    chafa_canvas_config_set_geometry(config.get(), cells.columns, cells.rows);
    chafa_canvas_config_set_symbol_map(config.get(), symbols.get());
    chafa_canvas_config_set_canvas_mode(config.get(), plain ? CHAFA_CANVAS_MODE_FGBG : colours_for(terminal.get()));
    chafa_canvas_config_set_pixel_mode(config.get(), plain ? CHAFA_PIXEL_MODE_SYMBOLS : pixels_for(terminal.get()));
    if (plain) chafa_canvas_config_set_dither_mode(config.get(), CHAFA_DITHER_MODE_DIFFUSION);
    const Canvas canvas(chafa_canvas_new(config.get()));
    chafa_canvas_draw_all_pixels(canvas.get(), CHAFA_PIXEL_RGBA8_UNASSOCIATED, pixels.data(), width, height, width * 4);
    GString *drawn = chafa_canvas_print(canvas.get(), plain ? nullptr : terminal.get());
    std::string text(drawn->str, drawn->len);
    g_string_free(drawn, TRUE);
    return text + "\n";
}

} // namespace kzb::cli

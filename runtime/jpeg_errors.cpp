#include "jpeg_errors.h"

#include <jerror.h>

namespace kzb {

namespace {

void give_up(j_common_ptr codec) {
    auto *errors = reinterpret_cast<JpegErrors *>(codec->err);
    errors->out_of_memory = codec->err->msg_code == JERR_OUT_OF_MEMORY;
    codec->err->format_message(codec, errors->reason);
    std::longjmp(errors->jump, 1);
}

// Bytes that belong to nothing: a few before a marker are padding that cameras write, but many, or any before the
// marker of a new interval, are pixels gone astray.
bool is_padding(const jpeg_error_mgr &errors) {
    constexpr int most_padding = 64;
    const int count = errors.msg_parm.i[0], marker = errors.msg_parm.i[1];
    return count <= most_padding && !(marker >= JPEG_RST0 && marker < JPEG_RST0 + 8);
}

// Warnings that say that pixels are missing or made up are errors here; the others concern markers only.
void judge_message(j_common_ptr codec, int level) {
    if (level >= 0) return;
    switch (codec->err->msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_JFIF_MAJOR:
    case JWRN_TOO_MUCH_DATA:
    case JWRN_BOGUS_ICC:
        return;
    case JWRN_EXTRANEOUS_DATA:
        if (is_padding(*codec->err)) return;
        [[fallthrough]];
    default:
        give_up(codec);
    }
}

void print_nothing(j_common_ptr) {}

} // namespace

jpeg_error_mgr *prepare_errors(JpegErrors &errors) {
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = give_up;
    errors.manager.emit_message = judge_message;
    errors.manager.output_message = print_nothing;
    return &errors.manager;
}

} // namespace kzb

#include "error.h"
#include "image_file.h"

using namespace kzb;

struct kzb_image_reader {
    ImageFileReader file;
    uint32_t rows_left = 0;
    FileFailure failure{}; // of an earlier row
};

struct kzb_image_writer {
    ImageFileWriter file;
    ImageShape shape{};
    std::vector<uint8_t> profile{};
    uint32_t rows_left = 0;
    bool failed = false;
};

namespace {

void describe(const ImageFileReader &file, kzb_image_info &info) {
    const ImageInfo &read = file.info();
    info = {};
    info.width = static_cast<int32_t>(read.width);
    info.height = static_cast<int32_t>(read.height);
    info.channels = read.alpha ? 4 : 3;
    info.orientation = read.orientation;
    info.profile = read.profile.empty() ? nullptr : read.profile.data();
    info.profile_size = read.profile.size();
    info.format = file.format();
}

bool fail_as(const FileFailure &failure, kzb_error *error) {
    return fail(error, failure.status, "%s", failure.message.c_str());
}

} // namespace

kzb_image_reader *kzb_image_open(const char *path, const kzb_read_options *options, kzb_image_info *info,
                                 kzb_error *error) {
    return guarded(error, static_cast<kzb_image_reader *>(nullptr), [&]() -> kzb_image_reader * {
        if (!path || !info) {
            fail(error, KZB_ERROR_USAGE, "kzb_image_open needs the path of a file, and a place for its description");
            return nullptr;
        }
        ReadLimits limits;
        limits.whole_in_memory = false;
        if (options && options->max_pixels) limits.max_pixels = options->max_pixels;
        if (options && options->scratch_folder) limits.scratch = options->scratch_folder;
        std::unique_ptr<kzb_image_reader> reader(new kzb_image_reader{ImageFileReader(path, limits)});
        if (!reader->file.start()) {
            fail_as(reader->file.failure(), error);
            return nullptr;
        }
        describe(reader->file, *info);
        reader->rows_left = reader->file.info().height;
        return reader.release();
    });
}

int kzb_image_read_row(kzb_image_reader *reader, void *row, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!reader || !row) return fail(error, KZB_ERROR_USAGE, "kzb_image_read_row needs a reader and a row");
        if (reader->rows_left == 0) {
            return fail(error, KZB_ERROR_USAGE, "all rows have been read, or one could not be");
        }
        --reader->rows_left;
        if (reader->file.read_row(static_cast<uint8_t *>(row))) return 1;
        reader->rows_left = 0;
        return fail_as(reader->file.failure(), error);
    });
}

void kzb_image_close(kzb_image_reader *reader) {
    delete reader;
}

int kzb_image_kind_of(const char *path, kzb_image_kind *result, kzb_error *error) {
    const ImageKind *kind = checked_kind(path, nullptr, error);
    if (!kind) return 0;
    if (result) *result = {kind->name, kind->alpha};
    return 1;
}

kzb_image_writer *kzb_image_create(const char *path, const kzb_image_info *info, const kzb_write_options *options,
                                   kzb_error *error) {
    return guarded(error, static_cast<kzb_image_writer *>(nullptr), [&]() -> kzb_image_writer * {
        const ImageKind *kind = checked_kind(path, options, error);
        if (!kind) return nullptr;
        const bool sound = info && info->width > 0 && info->height > 0 && info->channels >= 1 && info->channels <= 4;
        if (!sound || info->width > INT32_MAX / 4) {
            fail(error, KZB_ERROR_USAGE, "kzb_image_create needs a size and 1 to 4 channels");
            return nullptr;
        }
        if (!kind->alpha && info->channels % 2 == 0) {
            fail(error, KZB_ERROR_USAGE, "%s: a %s file holds no alpha", path, kind->name);
            return nullptr;
        }
        std::unique_ptr<kzb_image_writer> writer(
            new kzb_image_writer{ImageFileWriter(path, *kind, quality_of(options), options && options->lossless)});
        const auto *profile = static_cast<const uint8_t *>(info->profile);
        if (profile) writer->profile.assign(profile, profile + info->profile_size);
        writer->shape = {static_cast<uint32_t>(info->width), static_cast<uint32_t>(info->height), info->channels,
                         writer->profile};
        if (!writer->file.start(writer->shape)) {
            fail_as(writer->file.failure(), error);
            return nullptr;
        }
        writer->rows_left = writer->shape.height;
        return writer.release();
    });
}

int kzb_image_write_row(kzb_image_writer *writer, const void *row, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!writer || !row) return fail(error, KZB_ERROR_USAGE, "kzb_image_write_row needs a writer and a row");
        if (writer->rows_left == 0) {
            return fail(error, KZB_ERROR_USAGE, "all rows have been written, or one could not be");
        }
        --writer->rows_left;
        if (writer->file.write_row(static_cast<const uint8_t *>(row))) return 1;
        writer->rows_left = 0;
        writer->failed = true;
        return fail_as(writer->file.failure(), error);
    });
}

int kzb_image_finish(kzb_image_writer *finished, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        const std::unique_ptr<kzb_image_writer> writer(finished);
        if (!writer) return fail(error, KZB_ERROR_USAGE, "kzb_image_finish needs a writer");
        if (writer->failed) return fail_as(writer->file.failure(), error);
        if (writer->rows_left > 0) {
            return fail(error, KZB_ERROR_USAGE, "%u rows have not been written", writer->rows_left);
        }
        return writer->file.finish() ? 1 : fail_as(writer->file.failure(), error);
    });
}

void kzb_image_discard(kzb_image_writer *writer) {
    delete writer;
}

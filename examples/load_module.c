/* Loads the module, makes an image, fills a row of it and sends it through a filter:
 *
 *     load_module PictureKZB.so
 */
#include <picturekzb/runtime.h>
#include <stdio.h>

static kzb_value integer(int64_t number) {
    kzb_value value = {.kind = KZB_INTEGER, .integer = number};
    return value;
}

static int failed(const kzb_error *error) {
    fprintf(stderr, "load_module: %s\n", error->message);
    return 1;
}

/* A gray image of 8 x 1 pixels from black to white, brightened; prints its bytes before and after. */
static int brighten(KZBObject image, kzb_error *error) {
    static const unsigned char ramp[64] = {0, 36, 73, 109, 146, 182, 219, 255};
    kzb_value first = integer(0);
    kzb_value bytes = {.kind = KZB_OBJECT, .object = (KZBObject)kzb_block_new(ramp, sizeof ramp)};
    int done = kzb_assign(image, "Row", &first, 1, &bytes, error); /* image.Row(0) = bytes */
    kzb_release(&bytes);
    if (!done) return 0;

    /* The arguments by name; dest is nil, so that the filter makes a new image. */
    kzb_value arguments[] = {{.kind = KZB_NIL, .name = "dest"}, {.kind = KZB_DOUBLE, .name = "gamma", .number = 2.2}};
    kzb_value brighter, row;
    if (!kzb_call(image, "GammaFilter", arguments, 2, &brighter, error)) return 0;
    done = kzb_call(brighter.object, "Row", &first, 1, &row, error);
    kzb_release(&brighter);
    if (!done) return 0;

    size_t count;
    const unsigned char *result = kzb_block_bytes((KZBMemoryBlock)row.object, &count);
    for (int x = 0; x < 8; ++x) printf("%3d -> %3d\n", ramp[x], result[x]);
    printf("a row takes %zu bytes\n", count);
    kzb_release(&row);
    return 1;
}

int main(int count, char **arguments) {
    kzb_error error = {KZB_OK, "", ""};
    if (count != 2) {
        fprintf(stderr, "usage: load_module MODULE\n");
        return 2;
    }
    kzb_module *module = kzb_module_load(arguments[1], &error);
    if (!module) return failed(&error);

    int64_t gray = 0;
    if (!kzb_constant("PictureKZB", "ImageFormatG", &gray, &error)) return failed(&error);
    kzb_value size_and_layout[] = {integer(8), integer(1), integer(gray)};
    kzb_value image = {.kind = KZB_OBJECT};
    image.object = kzb_new("PictureKZB", size_and_layout, 3, &error);
    if (!image.object) return failed(&error);
    int done = brighten(image.object, &error);
    kzb_release(&image);
    if (!done) return failed(&error);

    printf("objects left: %zu\n", kzb_live_count(NULL));
    kzb_module_unload(module);
    return 0;
}

/* Keeps every picture that operations make in a scratch file, by a factory: a picture too large for memory is turned.
 *
 *     scratch_factory PictureKZB.so FOLDER [WIDTH HEIGHT]
 */
#include <picturekzb/runtime.h>
#include <stdio.h>
#include <stdlib.h>

static const char *folder;

static kzb_value integer(int64_t number) {
    kzb_value value = {.kind = KZB_INTEGER, .integer = number};
    return value;
}

/* A picture in a file of its own. The file goes when the picture is closed or released. */
static KZBObject file_backed(int32_t width, int32_t height, int32_t image_format) {
    static int made;
    char path[4096];
    snprintf(path, sizeof path, "%s/picture-%d", folder, ++made);
    printf("%d x %d pixels in %s\n", width, height, path);
    kzb_value file = {.kind = KZB_OBJECT, .object = (KZBObject)kzb_folder_item_new(path)};
    kzb_value arguments[] = {integer(width), integer(height), integer(image_format), integer(0), file};
    KZBObject picture = kzb_new("PictureKZB", arguments, 5, NULL);
    kzb_release(&file);
    return picture;
}

/* The handler of NewPictureKZB: called with the factory and the declared arguments. What it returns is its caller's. */
static KZBObject new_picture(KZBObject factory, int32_t width, int32_t height, int32_t image_format) {
    (void)factory;
    return file_backed(width, height, image_format);
}

int main(int count, char **arguments) {
    kzb_error error = {KZB_OK, "", ""};
    if (count != 3 && count != 5) return fprintf(stderr, "usage: scratch_factory MODULE FOLDER [WIDTH HEIGHT]\n"), 2;
    folder = arguments[2];
    const int width = count == 5 ? atoi(arguments[3]) : 640, height = count == 5 ? atoi(arguments[4]) : 400;
    kzb_module *module = kzb_module_load(arguments[1], &error);
    if (!module) return fprintf(stderr, "scratch_factory: %s\n", error.message), 1;

    kzb_value factory = {.kind = KZB_OBJECT};
    factory.object = kzb_new("PictureFactoryKZB", NULL, 0, &error);
    kzb_handle_event(factory.object, "NewPictureKZB", (KZBFunction)new_picture, &error);
    kzb_call_shared("PictureFactoryKZB", "SetFactory", &factory, 1, NULL, &error);

    kzb_value image = {.kind = KZB_OBJECT, .object = file_backed(width, height, 1)}, turned = {0}, in_file = {0};
    int done = image.object && kzb_call(image.object, "Rotate90", NULL, 0, &turned, &error) &&
               turned.kind == KZB_OBJECT && kzb_get(turned.object, "IsMapping", &in_file, &error);
    if (done) printf("turned, %s\n", in_file.integer ? "in a file" : "in memory");
    if (!done) fprintf(stderr, "scratch_factory: the picture could not be turned %s\n", error.message);

    kzb_release(&turned);
    kzb_release(&image);
    kzb_value nothing = {.kind = KZB_NIL};
    kzb_call_shared("PictureFactoryKZB", "SetFactory", &nothing, 1, NULL, &error); /* the module lets go of it */
    kzb_release(&factory);
    printf("objects left: %zu\n", kzb_live_count(NULL));
    kzb_module_unload(module);
    return done ? 0 : 1;
}

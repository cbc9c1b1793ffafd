/* The embedded host: loads a module of the host interface into this process and calls it as programs in the host's
 * language would.
 *
 * One process has one host. It is single-threaded, as the interface is: call everything here from one thread.
 *
 * Names of classes, methods, properties, constants and arguments are compared without regard to case, as in the host's
 * language.
 *
 * Failure. A function that can fail takes a `kzb_error *` (nil: not wanted) and returns 0 or nil; the error then holds
 * what went wrong as one sentence without a newline. A function that succeeds leaves the error alone.
 *
 * Ownership. A kzb_value that a function writes to `result` belongs to the caller, who releases it with
 * kzb_release(); arguments stay the caller's. References that functions here return are new references, unless the
 * comment says otherwise.
 */
#ifndef PICTUREKZB_RUNTIME_H
#define PICTUREKZB_RUNTIME_H

#include <picturekzb/host_interface.h>
#include <stddef.h>

/* Marks what the library exports. */
#define KZB_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------------------------------- errors and values */

typedef enum kzb_status {
    KZB_OK = 0,
    KZB_ERROR_MODULE,    /* the module could not be loaded */
    KZB_ERROR_USAGE,     /* the caller's mistake: no such name, wrong arguments */
    KZB_ERROR_EXCEPTION, /* the method raised a host exception; `exception` is its class name */
    KZB_ERROR_INPUT,     /* a file could not be read, or holds no picture */
    KZB_ERROR_OUTPUT,    /* a file could not be written */
    KZB_ERROR_MEMORY     /* out of memory */
} kzb_status;

typedef struct kzb_error {
    kzb_status status;
    char exception[64];
    char message[1024]; /* UTF-8, cut at a character when longer */
} kzb_error;

typedef enum kzb_kind {
    KZB_NIL = 0,
    KZB_INTEGER, /* .integer; fits Integer, Int64, Double, Color and, where it is 0 or 1, Boolean parameters */
    KZB_DOUBLE,  /* .number; fits Double parameters */
    KZB_BOOLEAN, /* .integer, 0 or 1 */
    KZB_COLOR,   /* .integer, 0x00RRGGBB */
    KZB_STRING,  /* .string */
    KZB_OBJECT,  /* .object: an object of any class, memory blocks, pictures and folder items included */
    KZB_ARRAY    /* .array: an array of integers */
} kzb_kind;

/* A value of the host's language. `name` makes an argument a named one ("Name = value"); nil: by position. */
typedef struct kzb_value {
    kzb_kind kind;
    const char *name;
    union {
        int64_t integer;
        double number;
        KZBString string;
        KZBObject object;
        KZBArray array;
    };
} kzb_value;

/* Adds a reference to, or drops one from, what a value refers to; nothing for plain values. kzb_release also makes the
 * value KZB_NIL. */
KZB_API void kzb_retain(const kzb_value *value);
KZB_API void kzb_release(kzb_value *value);

/* The class name of an object ("PictureKZB", "MemoryBlock", "Picture", "FolderItem" ...), valid as long as the object;
 * "nil" for nil. */
KZB_API const char *kzb_class_name(KZBObject object);

/* -------------------------------------------------------------------------------------------------- modules */

typedef struct kzb_module kzb_module;

/* Loads the module at `path` and starts it. Several may be loaded at a time; where two register a class of the same
 * name, the later one's is found. Each step fails with its own sentence: no such file, not a library, no
 * REALPluginMain, a wrong interface version, nothing registered, a nil or an unreadable text where a record needs a
 * value. A module that is loaded already is refused. */
KZB_API kzb_module *kzb_module_load(const char *path, kzb_error *error);

/* Forgets the module's classes and unloads it. All its objects must have been released, and none of its methods may be
 * running; otherwise that is reported as a misuse and the library stays in memory. Nil is ignored. */
KZB_API void kzb_module_unload(kzb_module *module);

/* A file-backed image that is closed and then destroyed closes descriptor 0 the second time. Before the first module
 * runs, the host therefore moves the process's standard input to another descriptor and puts the null device,
 * read-only, in its place; it does so again whenever a module has closed that. A program reads its standard input from
 * the descriptor that this function returns (-1: there was none when it was moved); when no module has been loaded yet,
 * the call moves it. */
KZB_API int kzb_standard_input(void);

/* The classes that the module registered, in that order; nil beyond the last. The records are the module's own. */
KZB_API const ClassDefinition *kzb_module_class(const kzb_module *module, size_t index);

/* Replaces the resolver that modules are given from now on (nil: back to the host's own), for hosts that lack entry
 * points or wrap them; kzb_host_entry is the host's own, and gives nil for a name that it does not know. */
KZB_API void kzb_use_resolver(KZBResolver resolver);
KZB_API void *kzb_host_entry(const char *name);

/* ---------------------------------------------------------------------------------------------------- calls
 *
 * A method is found by name among the class's declarations; of several, the one that fits the arguments: by number, by
 * names, by defaults, then by type, an exact type before a converted one. A mistake names the method, the argument,
 * what was expected and what came. An exception that the method raised is delivered when it returns: the call fails
 * with KZB_ERROR_EXCEPTION and the exception's Message. */

/* `New class_name(arguments)`: makes the object and calls the Constructor that fits; without arguments, and where no
 * Constructor takes none, no constructor runs. An image whose constructor failed is returned all the same, as in the
 * host: its Valid tells. */
KZB_API KZBObject kzb_new(const char *class_name, const kzb_value *arguments, size_t count, kzb_error *error);

/* `object.method(arguments)`; `result` may be nil, the result is then released. 1: returned, 0: failed. */
KZB_API int kzb_call(KZBObject object, const char *method, const kzb_value *arguments, size_t count, kzb_value *result,
                     kzb_error *error);

/* `object.method(arguments) = value`. */
KZB_API int kzb_assign(KZBObject object, const char *method, const kzb_value *arguments, size_t count,
                       const kzb_value *value, kzb_error *error);

/* `class_name.method(arguments)`, a shared method. */
KZB_API int kzb_call_shared(const char *class_name, const char *method, const kzb_value *arguments, size_t count,
                            kzb_value *result, kzb_error *error);

/* `object.property` and `object.property = value`. */
KZB_API int kzb_get(KZBObject object, const char *property, kzb_value *result, kzb_error *error);
KZB_API int kzb_set(KZBObject object, const char *property, const kzb_value *value, kzb_error *error);

/* `class_name.constant`. */
KZB_API int kzb_constant(const char *class_name, const char *constant, int64_t *value, kzb_error *error);

/* Gives the object a handler of an event, named as in its declaration's start ("NewPictureKZB"); nil takes it away.
 * The handler is called with the object, then the declared arguments, as C values. */
KZB_API int kzb_handle_event(KZBObject object, const char *event, KZBFunction handler, kzb_error *error);

/* ------------------------------------------------------------------------------------------- declarations */

typedef enum kzb_type {
    KZB_TYPE_NONE = 0, /* no result */
    KZB_TYPE_INTEGER,
    KZB_TYPE_INT64,
    KZB_TYPE_BOOLEAN,
    KZB_TYPE_DOUBLE,
    KZB_TYPE_COLOR,
    KZB_TYPE_STRING,
    KZB_TYPE_OBJECT, /* of the class `type_name` */
    KZB_TYPE_INTEGER_ARRAY
} kzb_type;

typedef struct kzb_parameter {
    char name[64];
    char type_name[64]; /* as declared; an array's element type */
    kzb_type type;
    int has_default;
    char default_text[64]; /* as declared */
} kzb_parameter;

#define KZB_MAX_PARAMETERS 16

typedef struct kzb_declaration {
    char name[64];
    size_t parameter_count;
    kzb_parameter parameters[KZB_MAX_PARAMETERS];
    kzb_type result;
    char result_name[64];
} kzb_declaration;

/* Takes a method's or event's declaration apart. */
KZB_API int kzb_parse_declaration(const char *text, kzb_declaration *declaration, kzb_error *error);

/* -------------------------------------------------------------------------------------- values of the host */

/* A string holding a copy of `count` bytes in `encoding`; nil when out of memory. Its bytes and length are read
 * through the reference itself; release it as a value of kind KZB_STRING. */
KZB_API KZBString kzb_string_new(const void *bytes, size_t count, uint32_t encoding);

/* A memory block holding a copy of `count` bytes (nil bytes: zeros); nil when out of memory. */
KZB_API KZBMemoryBlock kzb_block_new(const void *bytes, size_t count);

/* A block's bytes, and in *count (may be nil) how many; 0 for a block that refers to an address. */
KZB_API void *kzb_block_bytes(KZBMemoryBlock block, size_t *count);

/* An array of integers. */
KZB_API KZBArray kzb_array_new(const int32_t *values, size_t count);

/* A folder item for a path, which need not exist; relative to the current folder. */
KZB_API KZBFolderItem kzb_folder_item_new(const char *path);

/* A picture of depth 8 (gray), 16 (5 bits each of red, green, blue in a native 16-bit word), 24 (red, green, blue) or
 * 32 (exchange pixels); nil for a bad size or depth, or when out of memory. White, without a mask. */
KZB_API KZBPicture kzb_picture_new(int32_t width, int32_t height, int32_t depth);

/* The world that holds a picture's pixels, which stays the picture's and is valid as long as it; nil for nil. */
KZB_API GWorldPtr kzb_picture_world(KZBPicture picture);

/* A picture's mask, or nil; a mask's gray level 255 is opaque, 0 transparent. A mask may have any depth and size: beyond
 * its edges the picture is opaque. One that a module asks for where there is none is of depth 32, as large as the
 * picture and white. kzb_picture_set_mask draws nothing: it makes `mask` the picture's mask (nil: none); a mask that
 * has the picture itself as its mask is refused as misuse. */
KZB_API KZBPicture kzb_picture_mask(KZBPicture picture);
KZB_API void kzb_picture_set_mask(KZBPicture picture, KZBPicture mask);

/* ---------------------------------------------------------------------------------------------- image files
 *
 * PNG, JPEG, WebP, TIFF and portable anymaps (PNM). A file to read is told by its content. A file to write is told by
 * its path's ending (.png, .jpg, .jpeg, .webp, .tif, .tiff, .pnm, .pam, .ppm); .pnm and .pam are written as the gray,
 * colour or arbitrary map that the channels ask for, .ppm holds no alpha. The path "-" is standard input, as
 * kzb_standard_input() gives it, or standard output, to which an anymap goes unless a kind stands before it ("png:-").
 *
 * A file is written whole under a temporary name beside it and then renamed, so that a failure leaves what was there
 * before; only standard output and devices are written to as they are. */

typedef struct kzb_read_options {
    uint64_t max_pixels;        /* refuse larger pictures; 0: 2^31 - 1 */
    const char *scratch_folder; /* where pixels are kept that must be held whole (interlaced PNG, WebP); nil: memory */
} kzb_read_options;

typedef struct kzb_write_options {
    int quality;  /* JPEG and WebP, 1 to 100; 0: 90 */
    int lossless; /* WebP: every pixel as it is, and `quality` the effort */
} kzb_write_options;

/* Reads a file into a picture of depth 32, upright; a file's alpha becomes the mask. Options may be nil. Of PNG,
 * 16-bit, palette, gray and interlaced files are read too, of JPEG gray, CMYK and YCCK. */
KZB_API KZBPicture kzb_picture_read(const char *path, const kzb_read_options *options, kzb_error *error);

/* Writes a picture: colours and, where it has a mask and the kind of file holds alpha, the mask. */
KZB_API int kzb_picture_write(KZBPicture picture, const char *path, const kzb_write_options *options, kzb_error *error);

/* Row by row, for pictures that need not fit into memory. A row is packed: a byte for each channel of each pixel. */
typedef struct kzb_image_info {
    int32_t width, height;
    int32_t channels;    /* 3 red green blue, 4 and alpha; written also 1 gray, 2 gray and alpha */
    int32_t orientation; /* 1 to 8 as in Exif: how the rows, which come as stored, are to be turned */
    const void *profile; /* the ICC colour profile, nil for none; of a reader, valid as long as it */
    size_t profile_size;
    const char *format; /* "PNG", "JPEG" ...; not looked at when writing */
} kzb_image_info;

typedef struct kzb_image_reader kzb_image_reader;
typedef struct kzb_image_writer kzb_image_writer;

/* Opens a file and reads up to its pixels. Options may be nil. */
KZB_API kzb_image_reader *kzb_image_open(const char *path, const kzb_read_options *options, kzb_image_info *info,
                                         kzb_error *error);

/* The next row from the top. The last one succeeds only when the file is sound to its end. */
KZB_API int kzb_image_read_row(kzb_image_reader *reader, void *row, kzb_error *error);

/* Nil is ignored. */
KZB_API void kzb_image_close(kzb_image_reader *reader);

typedef struct kzb_image_kind {
    const char *name; /* "PNG", "JPEG" ... */
    int holds_alpha;
} kzb_image_kind;

/* What would be written to a path; fails for an ending that tells no kind. */
KZB_API int kzb_image_kind_of(const char *path, kzb_image_kind *kind, kzb_error *error);

/* Begins a file of `height` rows. Alpha in a kind of file that holds none is the caller's mistake. */
KZB_API kzb_image_writer *kzb_image_create(const char *path, const kzb_image_info *info,
                                           const kzb_write_options *options, kzb_error *error);
KZB_API int kzb_image_write_row(kzb_image_writer *writer, const void *row, kzb_error *error);

/* After the last row: gives the file its name. The writer is gone then, also when that fails. */
KZB_API int kzb_image_finish(kzb_image_writer *writer, kzb_error *error);

/* Gives the file up; nil is ignored. */
KZB_API void kzb_image_discard(kzb_image_writer *writer);

/* Deletes the temporary names of all files that are being written, for a signal handler that ends the process. */
KZB_API void kzb_remove_unfinished_files(void);

/* --------------------------------------------------------------------------------------------------- yields */

/* Called whenever a module yields, with `context`; user code may call modules from it. A result of 0 asks to stop:
 * the host remembers it, kzb_stop_requested() tells. Nil: no callback. */
typedef int kzb_yield_callback(void *context);
KZB_API void kzb_on_yield(kzb_yield_callback *callback, void *context);
KZB_API uint64_t kzb_yield_count(void);
KZB_API int kzb_stop_requested(void);
KZB_API void kzb_clear_stop(void);

/* --------------------------------------------------------------------------------------------------- audit */

/* How many objects of a class are alive ("PictureKZB", "MemoryBlock", "Picture", "Graphics", "FolderItem", "String",
 * "Array", "OutOfBoundsException" ...); nil: all of them. */
KZB_API size_t kzb_live_count(const char *class_name);

/* References in all, over live objects, strings and arrays: unchanged over a call that keeps its balance. */
KZB_API size_t kzb_live_references(void);

/* What happens when a module releases what is gone or uses it: by default the host writes one line to stderr and
 * aborts. With a handler, the handler is called with that line, and the misuse is otherwise ignored. */
typedef void kzb_misuse_handler(const char *line, void *context);
KZB_API void kzb_on_misuse(kzb_misuse_handler *handler, void *context);

#ifdef __cplusplus
}
#endif

#endif

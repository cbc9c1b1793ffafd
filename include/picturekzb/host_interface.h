/* The host interface, version 9: how a host runtime and the PictureKZB module meet inside one process.
 *
 * This header is the only place that knows the layouts. It compiles alone as C11 and as C++20 and needs nothing but
 * <stdint.h>, on the Mac also the published headers, so that a host outside this project can use it as it is.
 *
 * Words. A word is one machine word, as wide as a pointer. Every field of every record below is one word unless its
 * type says otherwise; counts and flags are words too.
 *
 * Values. Integer is int32_t, Int64 int64_t, Double double (IEEE binary64), Boolean one byte that is 0 or 1, Color a
 * 32-bit 0x00RRGGBB. They travel as the platform's C calling convention carries these C types. Objects, strings,
 * memory blocks, arrays, pictures and folder items travel as references: pointers, nil being 0.
 *
 * References are counted. A reference that a function returns belongs to its caller, who releases it
 * (REALUnlockObject, for strings REALUnlockString), unless the function's comment says otherwise. Arguments stay the
 * caller's. Memory blocks, pictures and folder items are objects; strings are not.
 *
 * Threads. The host calls the module on one thread, and the module calls the host on that thread only.
 *
 * Exceptions. No function here may let a C++ exception out.
 */
#ifndef PICTUREKZB_HOST_INTERFACE_H
#define PICTUREKZB_HOST_INTERFACE_H

#include <stdint.h>

/* Set where the system's published functions are there; elsewhere host and module share stand-ins. */
#if defined(__APPLE__) && !defined(KZB_CARBON)
#define KZB_CARBON 1
#endif
#if defined(KZB_CARBON)
#include <Carbon/Carbon.h>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version that a module announces and writes into its class definitions. */
#define KZB_INTERFACE_VERSION 9

typedef intptr_t kzb_word;
typedef uint8_t KZBBoolean;

/* Any C function; cast to its real type before the call. */
typedef void (*KZBFunction)(void);

/* References. The structures behind them are the host's own, except that a string's record is public (below). */
typedef struct KZBObjectRecord *KZBObject;
typedef struct KZBMemoryBlockRecord *KZBMemoryBlock;
typedef struct KZBArrayRecord *KZBArray;
typedef struct KZBPictureRecord *KZBPicture;
typedef struct KZBFolderItemRecord *KZBFolderItem;

/* ---------------------------------------------------------------------------------------------- strings */

/* What a string reference points at. Nil is the empty string. */
typedef struct KZBStringRecord {
    kzb_word reference_count;
    const char *text;   /* `length` bytes, then a NUL that `length` does not count */
    kzb_word length;    /* in bytes */
    kzb_word encoding;  /* one of the codes below, or any other code of the host */
} KZBStringRecord;
typedef KZBStringRecord *KZBString;

/* Text encodings: the codes that this module uses. Codes are unsigned 32-bit numbers. */
#define KZB_ENCODING_UTF16 UINT32_C(0x0100)
#define KZB_ENCODING_ASCII UINT32_C(0x0600)
#define KZB_ENCODING_UNKNOWN UINT32_C(0xFFFF) /* raw bytes */
#define KZB_ENCODING_UTF8 UINT32_C(0x08000100)
#define KZB_ENCODING_UTF32 UINT32_C(0x0C000100)

/* ----------------------------------------------------------------------------------- registration records
 *
 * The module hands these to the host in PluginRegisterClass and keeps them, and every string they point at, unmoved
 * for the life of the process. The host writes only ClassDefinition.instance_data_offset and EventDefinition.host. */

/* Getter and setter of a property:
 *   KZB_DIRECT   the host itself reads (writes) the property's type at the object's instance data + `parameter`:
 *                an Integer 4 bytes, a Boolean 1 byte, an Int64 8 bytes, a reference one word. When user code assigns
 *                an object reference this way, the host takes a reference to the new object and drops the one to the
 *                old; after the destructor it drops those that it wrote and that are still there.
 *   nil          the property cannot be read (written)
 *   otherwise    a function: getter `value (object, word parameter)`, setter `void (object, word parameter, value)` */
#define KZB_DIRECT ((KZBFunction)(kzb_word)-1)

typedef struct PropertyDefinition {
    const char *group; /* nil: none */
    const char *name;
    const char *type_name;
    kzb_word flags;
    KZBFunction getter;
    KZBFunction setter;
    kzb_word parameter;
    kzb_word editor_count;
    const void *editors;
} PropertyDefinition;

/* A method's function takes the object, then the declared arguments; its setter function (nil: user code cannot assign
 * to the method) takes the same and then the assigned value. A shared method's function takes the declared arguments
 * only. Declarations read "Name(argument as type, argument as type=default) as type"; the parentheses are absent where
 * there are no arguments, "as type" where there is no result, and an array argument is written "name() as type". */
typedef struct MethodDefinition {
    KZBFunction function;
    KZBFunction setter;
    const char *declaration;
    kzb_word flags;
} MethodDefinition;

/* An event that user code may handle. `host` is the host's to write. */
typedef struct EventDefinition {
    const char *declaration;
    kzb_word host;
} EventDefinition;

/* "Name = 1" or "Name = &h0000000A", then two words that are 0. */
typedef struct ConstantDefinition {
    const char *declaration;
    kzb_word first;
    kzb_word second;
} ConstantDefinition;

typedef struct ClassDefinition {
    kzb_word version; /* KZB_INTERFACE_VERSION */
    const char *name;
    const char *superclass_name;   /* nil: none */
    kzb_word instance_data_size;   /* bytes */
    kzb_word instance_data_offset; /* written by the host at registration */
    KZBFunction constructor;       /* unused here, nil */
    void (*destructor)(KZBObject); /* called when the last reference goes; nil: none */
    PropertyDefinition *properties;
    kzb_word property_count;
    MethodDefinition *methods;
    kzb_word method_count;
    EventDefinition *events;
    kzb_word event_count;
    void *event_instances;
    kzb_word event_instance_count;
    const char *interfaces;
    void *bind_descriptions;
    kzb_word bind_description_count;
    ConstantDefinition *constants;
    kzb_word constant_count;
    kzb_word flags;
    PropertyDefinition *shared_properties;
    kzb_word shared_property_count;
    MethodDefinition *shared_methods;
    kzb_word shared_method_count;
} ClassDefinition;

/* Objects. A reference points at the host's object; its instance data begin at object + instance_data_offset, aligned
 * for any type and zero-filled when the object is made. `New` in user code makes the object and then calls the method
 * named Constructor that fits the arguments. */

/* ------------------------------------------------------------------------------- stand-ins for the Mac's types
 *
 * Off the Mac a host and the module share these; on the Mac the published headers give the names. */
#if !defined(KZB_CARBON)

/* An offscreen graphics world. Whoever makes a world sets `dispose`, which frees the world and its pixels; the owner
 * calls it (DisposeGWorld does, and so does a host that took the world over). */
typedef struct GWorld {
    kzb_word depth;     /* bits per pixel: 8, 16, 24 or 32 */
    kzb_word row_bytes; /* from the start of one row to the start of the next */
    kzb_word width;     /* pixels */
    kzb_word height;    /* rows */
    void *base_address; /* the first row */
    kzb_word lock_count;
    void (*dispose)(struct GWorld *);
} GWorld;
typedef GWorld *GWorldPtr;
typedef GWorldPtr PixMapHandle; /* a world's pixel map is the world itself */

/* References to files: a NUL-terminated absolute UTF-8 path. */
typedef struct FSRef {
    char path[4096];
} FSRef;
typedef struct FSSpec {
    char path[4096];
} FSSpec;

/* A file's name in UTF-16, platform byte order. */
typedef struct HFSUniStr255 {
    uint16_t length;
    uint16_t unicode[255];
} HFSUniStr255;

#endif

/* --------------------------------------------------------------------------------------------- pictures
 *
 * Exchange pixels, in pictures of depth 32: byte 0 alpha or unused, then red, green, blue, in this byte order on every
 * platform. */

#define KZB_PICTURE_GWORLD 4 /* PictureDescription.kind of a picture backed by an offscreen graphics world */

typedef struct PictureDescription {
    kzb_word kind;
    void *port; /* kind 4: the GWorldPtr */
    kzb_word data_size;
    kzb_word width;
    kzb_word height;
} PictureDescription;

/* ------------------------------------------------------------------------------------------------- entry
 *
 * The module is a shared library with one exported symbol, which the host calls once:
 *
 *     int32_t REALPluginMain(KZBResolver resolver);
 *
 * The resolver gives the address of a host entry point by its published name, or nil for one that the host lacks. It
 * must offer RegisterPluginVersion; everything else may be missing. The result is what registering the module's last
 * class returned. */
typedef void *(*KZBResolver)(const char *name);
typedef int32_t REALPluginMainFunction(KZBResolver resolver);

/* ------------------------------------------------------------------------------------------ entry points
 *
 * The types of the functions that the resolver gives, named after them. */

/* Called first, with the module's interface version (KZB_INTERFACE_VERSION). */
typedef void RegisterPluginVersionFunction(int32_t version);

/* The host's version, for example 2006.04. */
typedef double REALGetRBVersionFunction(void);

/* Registers a class; only during REALPluginMain. Writes the definition's instance_data_offset. Non-zero: registered. */
typedef kzb_word PluginRegisterClassFunction(ClassDefinition *definition);

/* A new object of the named class with zero-filled instance data; no constructor runs. The caller owns the one
 * reference. Nil: no such class, or no memory. */
typedef KZBObject PluginNewInstanceFunction(const char *class_name);

/* Adds one reference to an object; nil is ignored. */
typedef void REALLockObjectFunction(KZBObject object);

/* Drops one reference; with the last one the destructor runs and the object is gone. Nil is ignored. */
typedef void REALUnlockObjectFunction(KZBObject object);

/* A new string holding a copy of `count` bytes, or nil. The caller owns it. */
typedef KZBString REALBuildStringFunction(const void *bytes, int32_t count);

/* Drops one reference to a string; nil is ignored. */
typedef void REALUnlockStringFunction(KZBString string);

/* Tags a string with an encoding; its bytes stay as they are. */
typedef void REALSetStringEncodingFunction(KZBString string, uint32_t encoding);

/* A new string with the text of `string` in `encoding`, or nil. The caller owns it. */
typedef KZBString REALConvertStringFunction(KZBString string, uint32_t encoding);

/* Sets a String property by name. Non-zero: set. The host takes its own reference to the string. */
typedef KZBBoolean REALSetPropValueStringFunction(KZBObject object, const char *property, KZBString value);

/* Reads an Integer property by name ("Width" and "Height" of a picture). Non-zero: *value was written. */
typedef KZBBoolean REALGetPropValueIntFunction(KZBObject object, const char *property, int32_t *value);

/* Raises an exception object, whose reference the host takes over, when the current method returns. The module may
 * still set its properties until then. */
typedef void RuntimeRaiseExceptionFunction(KZBObject exception);

/* The address of the user's handler of an event on this object, or nil. It is called with the object, then the
 * declared arguments. A NewPictureKZB handler hands its caller one reference. */
typedef KZBFunction GetEventInstanceFunction(KZBObject object, EventDefinition *event);
typedef KZBObject NewPictureKZBHandler(KZBObject factory, int32_t width, int32_t height, int32_t image_format);

/* A new memory block of that many bytes, or nil. The caller owns it. */
typedef KZBMemoryBlock newMemoryBlockFunction(int32_t bytes);

/* The address of a block's bytes, or nil. */
typedef void *memoryBlockGetPtrFunction(KZBMemoryBlock block);

/* A memory block that refers to the bytes at an address: it copies nothing, owns nothing and carries no size. */
typedef KZBMemoryBlock PtrToMemoryBlockFunction(void *address);

/* The upper bound of an integer array, its element count less 1; -1 when empty. */
typedef int32_t RuntimeUBoundFunction(KZBArray array);

/* Copies element `index` of an integer array to *value. */
typedef void RuntimeDirectReadIntArrayFunction(KZBArray array, int32_t index, int32_t *value);

/* Lets the host run its pending events, and with them user code that may call the module again. */
typedef void REALYieldToRBFunction(void);

/* A reference to a folder item's file. With a nil name it asks for the item itself and fails when that does not exist;
 * with a name it asks for the item's parent folder, and the item's name is written to *name. Non-zero: done. */
typedef KZBBoolean REALFSRefFromFolderItemFunction(KZBFolderItem item, FSRef *reference, HFSUniStr255 *name);

/* The older kind of reference, which need not exist. Non-zero: done. */
typedef KZBBoolean REALFSSpecFromFolderItemFunction(KZBFolderItem item, FSSpec *older_reference);

/* A picture over an offscreen graphics world; with take_over non-zero the picture owns the world from now on. The
 * caller owns the picture. Nil: no picture was made and the world is still the caller's. */
typedef KZBPicture REALBuildPictureFromGWorldFunction(GWorldPtr world, KZBBoolean take_over);

/* The address of an object's method by its full declaration, or nil. The drawing method of a graphics object is
 * called as GraphicsDrawPicture. */
typedef KZBFunction REALLoadObjectMethodFunction(KZBObject object, const char *declaration);
typedef void GraphicsDrawPicture(KZBObject graphics, KZBPicture picture, int32_t x, int32_t y, int32_t dw, int32_t dh,
                                 int32_t sx, int32_t sy, int32_t sw, int32_t sh);

/* A new picture, white, without a mask; depth 8, 16, 24 or 32. The caller owns it. Nil: a size below 1, another depth,
 * or no memory. */
typedef KZBPicture newPictureFunction(int32_t width, int32_t height, int32_t depth);

/* Fills in the description of a picture's pixels, which stay where they are until it is unlocked. Non-zero: filled in
 * and to be unlocked. */
typedef KZBBoolean lockPictureDescriptionFunction(KZBPicture picture, PictureDescription *description);
typedef void unlockPictureDescriptionFunction(KZBPicture picture, PictureDescription *description);

/* A picture's graphics object, which the caller owns, or nil. */
typedef KZBObject pluginPictureGraphicsGetterFunction(KZBPicture picture);

/* A picture's mask, which the caller owns; with create non-zero one is made when there is none. Nil: none. */
typedef KZBPicture REALGetPictureMaskFunction(KZBPicture picture, KZBBoolean create);

/* ------------------------------------------------------------------------------------- sizes and offsets */

#if defined(__cplusplus)
#define KZB_LAYOUT(condition) static_assert(condition, #condition)
#else
#define KZB_LAYOUT(condition) _Static_assert(condition, #condition)
#endif
#define KZB_WORDS(count) ((count) * sizeof(kzb_word))
#define KZB_AT(type, field, word) KZB_LAYOUT(__builtin_offsetof(type, field) == KZB_WORDS(word))

KZB_LAYOUT(sizeof(kzb_word) == sizeof(void *) && sizeof(KZBFunction) == sizeof(void *));
KZB_LAYOUT(sizeof(kzb_word) == 4 || sizeof(kzb_word) == 8);
KZB_LAYOUT(sizeof(KZBStringRecord) == KZB_WORDS(4));
KZB_AT(KZBStringRecord, text, 1);
KZB_AT(KZBStringRecord, length, 2);
KZB_AT(KZBStringRecord, encoding, 3);
KZB_LAYOUT(sizeof(PropertyDefinition) == KZB_WORDS(9));
KZB_AT(PropertyDefinition, getter, 4);
KZB_AT(PropertyDefinition, setter, 5);
KZB_AT(PropertyDefinition, parameter, 6);
KZB_LAYOUT(sizeof(MethodDefinition) == KZB_WORDS(4));
KZB_AT(MethodDefinition, declaration, 2);
KZB_LAYOUT(sizeof(EventDefinition) == KZB_WORDS(2));
KZB_LAYOUT(sizeof(ConstantDefinition) == KZB_WORDS(3));
KZB_LAYOUT(sizeof(ClassDefinition) == KZB_WORDS(25));
KZB_AT(ClassDefinition, instance_data_offset, 4);
KZB_AT(ClassDefinition, destructor, 6);
KZB_AT(ClassDefinition, properties, 7);
KZB_AT(ClassDefinition, methods, 9);
KZB_AT(ClassDefinition, events, 11);
KZB_AT(ClassDefinition, event_instances, 13);
KZB_AT(ClassDefinition, interfaces, 15);
KZB_AT(ClassDefinition, bind_descriptions, 16);
KZB_AT(ClassDefinition, constants, 18);
KZB_AT(ClassDefinition, flags, 20);
KZB_AT(ClassDefinition, shared_properties, 21);
KZB_AT(ClassDefinition, shared_methods, 23);
KZB_LAYOUT(sizeof(PictureDescription) == KZB_WORDS(5));
KZB_AT(PictureDescription, port, 1);
KZB_AT(PictureDescription, height, 4);
#if !defined(KZB_CARBON)
KZB_LAYOUT(sizeof(GWorld) == KZB_WORDS(7));
KZB_AT(GWorld, base_address, 4);
KZB_AT(GWorld, dispose, 6);
KZB_LAYOUT(sizeof(FSRef) == 4096 && sizeof(FSSpec) == 4096);
KZB_LAYOUT(sizeof(HFSUniStr255) == 512);
#endif

#undef KZB_AT
#undef KZB_WORDS
#undef KZB_LAYOUT

#ifdef __cplusplus
}
#endif

#endif

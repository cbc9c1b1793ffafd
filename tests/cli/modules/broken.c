/* A module that passes every check but for the one fault that it is compiled with. */
#include <fcntl.h>
#include <picturekzb/host_interface.h>
#include <stdlib.h>
#include <unistd.h>

#define EXPORTED __attribute__((visibility("default")))

static KZBResolver resolve;
static ClassDefinition definition;

/* Runs the statements with `entry` as a function of the host, where the host has it. */
#define WITH(name, statements)                                                                                         \
    {                                                                                                                  \
        name##Function *entry = (name##Function *)(intptr_t)resolve(#name);                                            \
        if (entry) statements                                                                                          \
    }

struct Data {
    int32_t number;
    KZBFolderItem file;
    int *place;
};

static struct Data *data_of(KZBObject object) {
    return (struct Data *)((char *)object + definition.instance_data_offset);
}

/* A sanitizer would see a write to nil before it happens. */
#define UNCHECKED __attribute__((no_sanitize("undefined"), no_sanitize("address")))

static __attribute__((unused)) UNCHECKED void crash(void) {
    volatile int *volatile nowhere = 0;
    *nowhere = 1;
}

static UNCHECKED void destructor(KZBObject object) {
#if defined(BROKEN_DESTRUCTOR)
    *data_of(object)->place = 0;
#else
    free(data_of(object)->place);
#endif
}

static UNCHECKED int32_t get_number(KZBObject object, kzb_word parameter) {
    (void)parameter;
#if defined(BROKEN_GETTER)
    return *data_of(object)->place;
#else
    return data_of(object)->number;
#endif
}

static UNCHECKED void set_number(KZBObject object, kzb_word parameter, int32_t value) {
    (void)parameter;
#if defined(BROKEN_SETTER)
    *data_of(object)->place = value;
#else
    data_of(object)->number = value;
#endif
}

static void construct(KZBObject object, int32_t width, int32_t height) {
    (void)height;
#if defined(BROKEN_HUGE_CONSTRUCTOR)
    if (width == INT32_MAX) crash();
#endif
    data_of(object)->number = width;
}

static void construct_file(KZBObject object, KZBFolderItem file) {
    FSSpec path;
    int descriptor = -1;
    (void)object;
    if (!file) return;
    WITH(REALFSSpecFromFolderItem, {
        if (entry(file, &path)) descriptor = open(path.path, O_CREAT | O_EXCL | O_WRONLY, 0600);
    })
    if (descriptor < 0) return;
    close(descriptor);
#if !defined(BROKEN_FILE_LEFT)
    unlink(path.path);
#endif
}

static UNCHECKED KZBMemoryBlock block(KZBObject object, int32_t size) {
    KZBMemoryBlock made = 0;
    (void)object;
    (void)size;
#if defined(BROKEN_METHOD)
    crash();
#elif defined(BROKEN_EXIT)
    exit(3);
#elif defined(BROKEN_RANDOM)
    if (size < 0) crash();
#endif
    WITH(newMemoryBlock, { made = entry(16); })
#if defined(BROKEN_LEAK)
    WITH(REALLockObject, { entry((KZBObject)made); })
#elif defined(BROKEN_OVER_RELEASE)
    WITH(REALUnlockObject, { entry((KZBObject)made); })
    WITH(REALUnlockObject, { entry((KZBObject)made); })
    made = 0;
#elif defined(BROKEN_TRUSTS_HOST)
    WITH(memoryBlockGetPtr, { *(char *)entry(made) = 1; })
#endif
    return made;
}

/* Needs two things from the host, and gives the first back when it does not get the second. */
static KZBString text(KZBObject object) {
    KZBMemoryBlock first = 0;
    KZBString second = 0;
    (void)object;
    WITH(newMemoryBlock, { first = entry(16); })
    WITH(REALBuildString, { second = entry("text", 4); })
#if defined(BROKEN_FAILURE_PATH)
    if (!second) return 0;
#endif
    WITH(REALUnlockObject, { entry((KZBObject)first); })
    return second;
}

static int32_t total(KZBArray numbers) {
    int32_t bound = -1;
#if defined(BROKEN_SHARED)
    if (!numbers) crash();
#endif
    WITH(RuntimeUBound, { bound = entry(numbers); })
    return bound + 1;
}

static PropertyDefinition properties[] = {
    {0, "Number", "Integer", 0, (KZBFunction)get_number, (KZBFunction)set_number, 0, 0, 0},
#if defined(BROKEN_PROPERTY_TWICE)
    {0, "number", "Integer", 0, KZB_DIRECT, 0, 0, 0, 0},
#else
    {0, "Plain", "Integer", 0, KZB_DIRECT, KZB_DIRECT, 0, 0, 0},
#endif
};

static MethodDefinition methods[] = {
    {(KZBFunction)construct, 0, "Constructor(width as integer, height as integer)", 0},
    {(KZBFunction)construct_file, 0, "Constructor(file as folderitem)", 0},
    {(KZBFunction)block, 0, "Block(size as integer) as memoryblock", 0},
#if defined(BROKEN_METHOD_TWICE)
    {(KZBFunction)block, 0, "BLOCK(bytes as integer) as memoryblock", 0},
#endif
    {(KZBFunction)text, 0, "Text as string", 0},
};

static ConstantDefinition constants[] = {
    {"One = 1", 0, 0},
#if defined(BROKEN_CONSTANT_WORD)
    {"Two = 2", 0, 2},
#elif defined(BROKEN_CONSTANT_TWICE)
    {"ONE = &h00000001", 0, 0},
#else
    {"Two = &h00000002", 0, 0},
#endif
};

static MethodDefinition shared_methods[] = {{(KZBFunction)total, 0, "Total(numbers() as integer) as integer", 0}};

#define COUNT(table) (sizeof(table) / sizeof(*table))

static ClassDefinition definition = {
    .version = KZB_INTERFACE_VERSION,
    .name = "Broken \"\\\xFF",
    .instance_data_size = sizeof(struct Data),
    .destructor = destructor,
    .properties = properties,
    .property_count = COUNT(properties),
    .methods = methods,
    .method_count = COUNT(methods),
    .constants = constants,
    .constant_count = COUNT(constants),
    .shared_methods = shared_methods,
    .shared_method_count = COUNT(shared_methods),
};

#if defined(BROKEN_EXPORT)
EXPORTED int another_name;
#elif defined(BROKEN_NEEDED)
extern int from_absent_library(void);
#endif

EXPORTED int32_t REALPluginMain(KZBResolver resolver);

EXPORTED UNCHECKED int32_t REALPluginMain(KZBResolver resolver) {
    int32_t result = 0;
    resolve = resolver;
#if !defined(BROKEN_CLASS_NAME)
    definition.name = "Broken";
#endif
#if defined(BROKEN_ENDLESS)
    for (volatile int turns = 0;;) turns = 1 - turns;
#elif defined(BROKEN_NEEDED)
    result = from_absent_library();
#elif defined(BROKEN_START)
    crash();
#elif defined(BROKEN_LATE_VERSION)
    WITH(REALGetRBVersion, { entry(); })
#elif defined(BROKEN_VERSION_TWICE)
    WITH(RegisterPluginVersion, { entry(KZB_INTERFACE_VERSION); })
#endif
    WITH(RegisterPluginVersion, { entry(KZB_INTERFACE_VERSION); })
#if defined(BROKEN_TRUSTS_RESOLVER)
    ((REALGetRBVersionFunction *)(intptr_t)resolve("REALGetRBVersion"))();
#endif
    WITH(PluginRegisterClass, { result = (int32_t)entry(&definition); })
    return result;
}

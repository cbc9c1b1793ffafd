/* The smallest host: loads the module without libkzbruntime, lets it register its classes, and lists what it offers.
 *
 *     own_host PictureKZB.so
 */
#include <dlfcn.h>
#include <picturekzb/host_interface.h>
#include <stdio.h>
#include <string.h>

static int32_t announced;

static void register_version(int32_t version) { announced = version; }

/* A host makes room for each class's instance data in its objects, and tells the module where they begin. */
static kzb_word register_class(ClassDefinition *definition) {
    definition->instance_data_offset = 2 * sizeof(void *);
    printf("%s: %d properties, %d methods, %d bytes of instance data\n", definition->name,
           (int)definition->property_count, (int)definition->method_count, (int)definition->instance_data_size);
    if (definition->method_count > 0) printf("  the first method: %s\n", definition->methods[0].declaration);
    return 1;
}

/* All other entry points are missing here. The module then does what it does when they give nil. */
static void *resolve(const char *name) {
    if (strcmp(name, "RegisterPluginVersion") == 0) return (void *)(kzb_word)register_version;
    if (strcmp(name, "PluginRegisterClass") == 0) return (void *)(kzb_word)register_class;
    return NULL;
}

int main(int count, char **arguments) {
    void *library = count == 2 ? dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    void *entry = library ? dlsym(library, "REALPluginMain") : NULL;
    if (!entry) {
        fprintf(stderr, "own_host: %s\n", count == 2 ? dlerror() : "usage: own_host MODULE");
        return 1;
    }
    ((REALPluginMainFunction *)(kzb_word)entry)(resolve);
    printf("interface version %d\n", (int)announced);
    return announced == KZB_INTERFACE_VERSION ? 0 : 1;
}

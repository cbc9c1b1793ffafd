/* A module that would be well but for the one fault that it is compiled with. */
#include <picturekzb/host_interface.h>

static void nothing(KZBObject object) {
    (void)object;
}

struct Data {
    int32_t number;
};

static PropertyDefinition properties[] = {
    {0, "First", "Integer", 0, KZB_DIRECT, 0, 0, 0, 0},
#if defined(FAULT_NIL_PROPERTY_NAME)
    {0, 0, "Integer", 0, KZB_DIRECT, 0, 0, 0, 0},
#elif defined(FAULT_NIL_TYPE_NAME)
    {0, "Second", 0, 0, KZB_DIRECT, 0, 0, 0, 0},
#elif defined(FAULT_UNKNOWN_TYPE)
    {0, "Second", "Unheard", 0, 0, 0, 0, 0, 0},
#elif defined(FAULT_DIRECT_OUTSIDE)
    {0, "Second", "Integer", 0, KZB_DIRECT, 0, 1, 0, 0},
#else
    {0, "Second", "Integer", 0, 0, KZB_DIRECT, 0, 0, 0},
#endif
};

static MethodDefinition methods[] = {
    {(KZBFunction)nothing, 0, "First", 0},
#if defined(FAULT_NIL_METHOD_DECLARATION)
    {(KZBFunction)nothing, 0, 0, 0},
#elif defined(FAULT_BAD_METHOD_DECLARATION)
    {(KZBFunction)nothing, 0, "Second(a as integer, b integer)", 0},
#elif defined(FAULT_NIL_FUNCTION)
    {0, 0, "Second", 0},
#elif defined(FAULT_SETTER_WITHOUT_TYPE)
    {(KZBFunction)nothing, (KZBFunction)nothing, "Second(a as integer)", 0},
#else
    {(KZBFunction)nothing, 0, "Second", 0},
#endif
};

static EventDefinition events[] = {
#if defined(FAULT_NIL_EVENT_DECLARATION)
    {0, 0},
#else
    {"Happened(what as integer)", 0},
#endif
};

static ConstantDefinition constants[] = {
    {"One = 1", 0, 0},
#if defined(FAULT_NIL_CONSTANT_DECLARATION)
    {0, 0, 0},
#elif defined(FAULT_BAD_CONSTANT)
    {"Two = two", 0, 0},
#else
    {"Two = 2", 0, 0},
#endif
};

ClassDefinition definition = {
    .version = KZB_INTERFACE_VERSION,
    .name = "Faulty",
    .instance_data_size = sizeof(struct Data),
    .properties = properties,
    .property_count = 2,
    .methods = methods,
    .method_count = 2,
    .events = events,
    .event_count = 1,
    .constants = constants,
    .constant_count = 2,
};

#if !defined(FAULT_NO_MAIN)

int32_t REALPluginMain(KZBResolver resolver) __attribute__((visibility("default")));

int32_t REALPluginMain(KZBResolver resolver) {
    PluginRegisterClassFunction *register_class =
        (PluginRegisterClassFunction *)(intptr_t)resolver("PluginRegisterClass");
#if !defined(FAULT_NO_VERSION)
    RegisterPluginVersionFunction *announce =
        (RegisterPluginVersionFunction *)(intptr_t)resolver("RegisterPluginVersion");
#if defined(FAULT_WRONG_VERSION)
    announce(KZB_INTERFACE_VERSION - 1);
#else
    announce(KZB_INTERFACE_VERSION);
#endif
#endif
#if defined(FAULT_NO_CLASS)
    (void)register_class;
    return 0;
#elif defined(FAULT_NIL_CLASS)
    return (int32_t)register_class(0);
#else
#if defined(FAULT_RECORD_VERSION)
    definition.version = 10;
#elif defined(FAULT_NIL_CLASS_NAME)
    definition.name = 0;
#elif defined(FAULT_HOST_CLASS_NAME)
    definition.name = "memoryblock";
#elif defined(FAULT_SUPERCLASS)
    definition.superclass_name = "Picture";
#elif defined(FAULT_CONSTRUCTOR)
    definition.constructor = (KZBFunction)nothing;
#elif defined(FAULT_TWICE)
    register_class(&definition);
#elif defined(FAULT_NIL_TABLE)
    definition.methods = 0;
#elif defined(FAULT_NEGATIVE_COUNT)
    definition.constant_count = -1;
#endif
    int32_t result = (int32_t)register_class(&definition);
#if defined(FAULT_OBJECT_LEFT)
    /* Where the test finds it. */
    definition.event_instances = ((PluginNewInstanceFunction *)(intptr_t)resolver("PluginNewInstance"))("Faulty");
#endif
    return result;
#endif
}

#endif

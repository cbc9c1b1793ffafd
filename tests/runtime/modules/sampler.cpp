// A module that uses everything that a host offers: every type of argument and result, overloads, defaults, setters,
// events, exceptions, properties of every kind, and, on demand, every misuse of references.
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <picturekzb/host_interface.h>
#include <string>
#include <unistd.h>

namespace {

KZBResolver resolve;

// A host entry point, looked up at every call.
template <class Function> Function *entry(const char *name) {
    return reinterpret_cast<Function *>(resolve(name));
}
#define HOST(name) entry<name##Function>(#name)

extern ClassDefinition sampler_class;
extern EventDefinition source_events[];

struct Sampler {
    int32_t count;
    uint8_t flag;
    int64_t big;
    double ratio;
    uint32_t tint;
    KZBObject other;
    KZBString label;
    int32_t items[4];
    KZBString texts[2];
    int32_t computed;
    int32_t secret;
    uint8_t owns_other;
    uint8_t keeps_itself;
    uint8_t releases_itself;
    uint8_t closes_descriptor;
};

int32_t destroyed = 0;

Sampler &data(KZBObject object) {
    return *reinterpret_cast<Sampler *>(reinterpret_cast<char *>(object) + sampler_class.instance_data_offset);
}

KZBString text(const std::string &bytes, uint32_t encoding = KZB_ENCODING_UTF8) {
    KZBString string = HOST(REALBuildString)(bytes.data(), static_cast<int32_t>(bytes.size()));
    HOST(REALSetStringEncoding)(string, encoding);
    return string;
}

std::string bytes_of(KZBString string) {
    return string ? std::string(string->text, static_cast<size_t>(string->length)) : std::string();
}

// Raised first, its message set afterwards, as modules do.
void raise(const char *class_name, const char *message) {
    KZBObject exception = HOST(PluginNewInstance)(class_name);
    HOST(RuntimeRaiseException)(exception);
    KZBString string = message ? text(message, KZB_ENCODING_ASCII) : nullptr;
    HOST(REALSetPropValueString)(exception, "Message", string);
    HOST(REALUnlockString)(string);
}

void destructor(KZBObject object) {
    ++destroyed;
    Sampler &s = data(object);
    for (KZBString string : s.texts) HOST(REALUnlockString)(string);
    if (s.owns_other) HOST(REALUnlockObject)(s.other);
    if (s.keeps_itself) HOST(REALLockObject)(object);
    if (s.releases_itself) HOST(REALUnlockObject)(object);
    if (s.closes_descriptor) close(0);
    HOST(REALLockObject)(object);
    HOST(REALUnlockObject)(object);
}

// ---------------------------------------------------------------------------------------- constructors

void construct_count(KZBObject object, int32_t start) {
    data(object).count = start;
}

void construct_block(KZBObject object, KZBMemoryBlock block, int32_t start) {
    if (!block) return raise("NilObjectException", "Block is nil");
    data(object).count = start + static_cast<unsigned char *>(HOST(memoryBlockGetPtr)(block))[0];
}

// --------------------------------------------------------------------------------- arguments and results

KZBString describe(KZBObject object, int32_t i, int64_t l, double d, KZBBoolean b, uint32_t c, KZBString s,
                   KZBMemoryBlock m, KZBObject o, KZBArray a, KZBFolderItem f, double e, int32_t last) {
    FSSpec path = {};
    if (f) HOST(REALFSSpecFromFolderItem)(f, &path);
    char line[5000];
    std::snprintf(line, sizeof line, "%d %d %lld %g %d %06X %s %d %d %d %s %g %d", static_cast<int>(data(object).count),
                  static_cast<int>(i), static_cast<long long>(l), d, b, static_cast<unsigned>(c), bytes_of(s).c_str(),
                  m ? *static_cast<unsigned char *>(HOST(memoryBlockGetPtr)(m)) : -1,
                  o ? static_cast<int>(data(o).count) : -1, static_cast<int>(HOST(RuntimeUBound)(a)), path.path, e,
                  static_cast<int>(last));
    return text(line);
}

int32_t twice_integer(KZBObject, int32_t value) {
    return static_cast<int32_t>(2 * static_cast<uint32_t>(value));
}
int64_t twice_int64(KZBObject, int64_t value) {
    return 2 * value;
}
double half(KZBObject, double value) {
    return value / 2;
}
KZBBoolean negated(KZBObject, KZBBoolean value) {
    return !value;
}
uint32_t inverted(KZBObject, uint32_t value) {
    return 0xFFFFFF - value;
}
KZBString doubled(KZBObject, KZBString value) {
    return text(bytes_of(value) + bytes_of(value));
}
KZBString no_text(KZBObject) {
    return nullptr;
}
KZBObject no_object(KZBObject) {
    return nullptr;
}
void nothing(KZBObject) {}

KZBObject myself(KZBObject object) {
    HOST(REALLockObject)(object);
    return object;
}

KZBMemoryBlock copied(KZBObject, KZBString value) {
    KZBMemoryBlock block = HOST(newMemoryBlock)(static_cast<int32_t>(value->length));
    std::memcpy(HOST(memoryBlockGetPtr)(block), value->text, static_cast<size_t>(value->length));
    return block;
}

KZBMemoryBlock wrapped(KZBObject, KZBMemoryBlock block) {
    return HOST(PtrToMemoryBlock)(HOST(memoryBlockGetPtr)(block));
}

int32_t total(KZBObject, KZBArray values) {
    int32_t sum = 0, value = 0;
    for (int32_t i = 0; i <= HOST(RuntimeUBound)(values); ++i) {
        HOST(RuntimeDirectReadIntArray)(values, i, &value);
        sum += value;
    }
    return sum;
}

int32_t element(KZBObject, KZBArray values, int32_t index) {
    int32_t value = -77;
    HOST(RuntimeDirectReadIntArray)(values, index, &value);
    return value;
}

int32_t sum(KZBObject, int32_t a, int32_t b, int32_t c) {
    return 100 * a + 10 * b + c;
}

KZBString defaults(KZBObject, KZBBoolean b, double d, uint32_t c, KZBString s, KZBObject o, KZBArray a, int64_t l) {
    char line[256];
    std::snprintf(line, sizeof line, "%d %g %06X %s %d %d %lld", b, d, static_cast<unsigned>(c), bytes_of(s).c_str(),
                  o != nullptr, a != nullptr, static_cast<long long>(l));
    return text(line);
}

KZBString convert(KZBObject, KZBString value, int32_t encoding) {
    return HOST(REALConvertString)(value, static_cast<uint32_t>(encoding));
}

KZBString path_of(KZBObject, KZBFolderItem item, int32_t kind) {
    FSRef reference = {};
    FSSpec older_reference = {};
    HFSUniStr255 name = {};
    if (kind == 0) return HOST(REALFSRefFromFolderItem)(item, &reference, nullptr) ? text(reference.path) : nullptr;
    if (kind == 1) return HOST(REALFSSpecFromFolderItem)(item, &older_reference) ? text(older_reference.path) : nullptr;
    if (!HOST(REALFSRefFromFolderItem)(item, &reference, &name)) return nullptr;
    std::string units(reinterpret_cast<char *>(name.unicode), size_t{2} * name.length);
    KZBString utf16 = text(units, KZB_ENCODING_UTF16), utf8 = HOST(REALConvertString)(utf16, KZB_ENCODING_UTF8);
    std::string both = std::string(reference.path) + "|" + bytes_of(utf8);
    HOST(REALUnlockString)(utf16);
    HOST(REALUnlockString)(utf8);
    return text(both);
}

KZBBoolean has_entry(KZBObject, KZBString name) {
    return resolve(name->text) != nullptr;
}

int32_t integer_property(KZBObject, KZBObject object, KZBString name) {
    int32_t value = -77;
    return HOST(REALGetPropValueInt)(object, name->text, &value) ? value : -78;
}

KZBBoolean set_string_property(KZBObject, KZBObject object, KZBString name, KZBString value) {
    return HOST(REALSetPropValueString)(object, name->text, value);
}

KZBBoolean finds_method(KZBObject object, KZBString declaration) {
    return HOST(REALLoadObjectMethod)(object, declaration->text) == reinterpret_cast<KZBFunction>(negated);
}

KZBObject fresh(KZBObject, KZBString class_name) {
    return HOST(PluginNewInstance)(class_name->text);
}

// --------------------------------------------------------------------------------------------- overloads

KZBString kind_integer(KZBObject, int32_t) {
    return text("integer");
}
KZBString kind_double(KZBObject, double) {
    return text("double");
}
KZBString kind_boolean(KZBObject, KZBBoolean) {
    return text("boolean");
}
KZBString kind_color(KZBObject, uint32_t) {
    return text("color");
}
KZBString kind_string(KZBObject, KZBString) {
    return text("string");
}
KZBString kind_block(KZBObject, KZBMemoryBlock) {
    return text("block");
}
KZBString kind_array(KZBObject, KZBArray) {
    return text("array");
}
KZBString kind_number(KZBObject, double) {
    return text("number");
}
KZBString kind_wide(KZBObject, int64_t) {
    return text("wide");
}

KZBString pick_none(KZBObject) {
    return text("none");
}
KZBString pick_one(KZBObject, int32_t) {
    return text("one");
}
KZBString pick_optional(KZBObject, int32_t, int32_t, int32_t, int32_t) {
    return text("optional");
}

// ----------------------------------------------------------------------------------------------- setters

int32_t item(KZBObject object, int32_t index) {
    if (index >= 0 && index < 4) return data(object).items[index];
    raise("OutOfBoundsException", "Index is out of bounds.");
    return 0;
}

void set_item(KZBObject object, int32_t index, int32_t value) {
    if (index < 0 || index > 3) return raise("OutOfBoundsException", "Index is out of bounds.");
    data(object).items[index] = value;
}

KZBString string_at(KZBObject object, int32_t index) {
    KZBString string = data(object).texts[index];
    return string ? text(bytes_of(string)) : nullptr;
}

void set_string_at(KZBObject object, int32_t index, KZBString value) {
    HOST(REALUnlockString)(data(object).texts[index]);
    data(object).texts[index] = value ? text(bytes_of(value)) : nullptr;
}

// -------------------------------------------------------------------------------------------- exceptions

KZBObject raise_two(KZBObject object) {
    raise("NilObjectException", "first");
    raise("OutOfBoundsException", "second");
    return myself(object);
}

void raise_message(KZBObject, KZBString message) {
    KZBObject exception = HOST(PluginNewInstance)("RuntimeException");
    HOST(REALSetPropValueString)(exception, "message", message);
    HOST(RuntimeRaiseException)(exception);
}

void raise_silently(KZBObject) {
    raise("OutOfBoundsException", nullptr);
}
void raise_nil(KZBObject) {
    raise("NoSuchException", "lost");
}

void raise_again(KZBObject) {
    KZBObject exception = HOST(PluginNewInstance)("RuntimeException");
    HOST(REALLockObject)(exception);
    HOST(RuntimeRaiseException)(exception);
    HOST(RuntimeRaiseException)(exception);
}

void raise_object(KZBObject object) {
    HOST(RuntimeRaiseException)(object);
}

void yield(KZBObject) {
    HOST(REALYieldToRB)();
}

void raise_and_yield(KZBObject) {
    KZBObject exception = HOST(PluginNewInstance)("NilObjectException");
    HOST(RuntimeRaiseException)(exception);
    HOST(REALYieldToRB)();
    KZBString message = text("outer");
    HOST(REALSetPropValueString)(exception, "Message", message);
    HOST(REALUnlockString)(message);
}

// ---------------------------------------------------------------------------------------- misbehaviour

void release_block_twice(KZBObject) {
    KZBMemoryBlock block = HOST(newMemoryBlock)(8);
    HOST(REALUnlockObject)(reinterpret_cast<KZBObject>(block));
    HOST(REALUnlockObject)(reinterpret_cast<KZBObject>(block));
}

void use_released_block(KZBObject) {
    KZBMemoryBlock block = HOST(newMemoryBlock)(8);
    HOST(REALUnlockObject)(reinterpret_cast<KZBObject>(block));
    HOST(memoryBlockGetPtr)(block);
}

void release_string_twice(KZBObject) {
    KZBString string = text("gone");
    HOST(REALUnlockString)(string);
    HOST(REALUnlockString)(string);
}

void release_string_as_object(KZBObject) {
    KZBString string = text("string");
    HOST(REALUnlockObject)(reinterpret_cast<KZBObject>(string));
    HOST(REALUnlockString)(string);
}

void write_to_released(KZBObject) {
    KZBString string = text("gone");
    HOST(REALUnlockString)(string);
    string->encoding = 1;
}

void take_block_for_array(KZBObject, KZBMemoryBlock block) {
    HOST(RuntimeUBound)(reinterpret_cast<KZBArray>(block));
}

KZBString released_result(KZBObject) {
    KZBString string = text("gone");
    HOST(REALUnlockString)(string);
    return string;
}

void keep_itself(KZBObject object) {
    data(object).keeps_itself = 1;
}
void release_itself(KZBObject object) {
    data(object).releases_itself = 1;
}
void close_descriptor(KZBObject) {
    close(0);
}
void close_descriptor_at_the_end(KZBObject object) {
    data(object).closes_descriptor = 1;
}
// Drops what was assigned and holds a reference of its own there, which the destructor drops but leaves in place.
void adopt_other(KZBObject object, KZBObject other) {
    HOST(REALUnlockObject)(data(object).other);
    HOST(REALLockObject)(other);
    data(object).other = other;
    data(object).owns_other = 1;
}

void forget_other(KZBObject object) {
    data(object).other = nullptr;
}

// -------------------------------------------------------------------------------------------- properties

int32_t get_computed(KZBObject object, kzb_word parameter) {
    return data(object).computed + static_cast<int32_t>(parameter);
}

void set_computed(KZBObject object, kzb_word parameter, int32_t value) {
    if (value < 0) return raise("OutOfBoundsException", "Computed is negative");
    data(object).computed = value - static_cast<int32_t>(parameter);
}

void set_secret(KZBObject object, kzb_word, int32_t value) {
    data(object).secret = value;
}
KZBString get_title(KZBObject object, kzb_word) {
    return text("title " + std::to_string(data(object).count));
}
int64_t get_size(KZBObject, kzb_word) {
    return INT64_C(0x123456789AB);
}
double get_exact(KZBObject, kzb_word parameter) {
    return static_cast<double>(parameter) / 4;
}
KZBMemoryBlock get_memory(KZBObject object, kzb_word) {
    return HOST(PtrToMemoryBlock)(&data(object).items);
}

// ---------------------------------------------------------------------------------------- shared methods

int32_t add(int32_t a, int32_t b) {
    return a + b;
}
int32_t count_destroyed() {
    return destroyed;
}

KZBObject make(int32_t start) {
    KZBObject object = HOST(PluginNewInstance)("Sampler");
    data(object).count = start;
    return object;
}

using SupplyHandler = KZBObject(KZBObject source, int32_t a, double b);

KZBObject ask(KZBObject source, int32_t a, double b) {
    auto handler = reinterpret_cast<SupplyHandler *>(HOST(GetEventInstance)(source, &source_events[0]));
    return handler ? handler(source, a, b) : nullptr;
}

// ------------------------------------------------------------------------------------------------ tables

template <class Function> KZBFunction erased(Function *function) {
    return reinterpret_cast<KZBFunction>(function);
}

#define FIELD(name) static_cast<kzb_word>(offsetof(Sampler, name))

PropertyDefinition properties[] = {
    {nullptr, "Count", "Integer", 0, KZB_DIRECT, KZB_DIRECT, FIELD(count), 0, nullptr},
    {nullptr, "Flag", "Boolean", 0, KZB_DIRECT, KZB_DIRECT, FIELD(flag), 0, nullptr},
    {nullptr, "Big", "Int64", 0, KZB_DIRECT, KZB_DIRECT, FIELD(big), 0, nullptr},
    {nullptr, "Ratio", "Double", 0, KZB_DIRECT, KZB_DIRECT, FIELD(ratio), 0, nullptr},
    {nullptr, "Tint", "Color", 0, KZB_DIRECT, KZB_DIRECT, FIELD(tint), 0, nullptr},
    {nullptr, "Other", "Sampler", 0, KZB_DIRECT, KZB_DIRECT, FIELD(other), 0, nullptr},
    {nullptr, "Label", "String", 0, KZB_DIRECT, KZB_DIRECT, FIELD(label), 0, nullptr},
    {nullptr, "Computed", "Integer", 0, erased(get_computed), erased(set_computed), 1000, 0, nullptr},
    {nullptr, "Secret", "Integer", 0, nullptr, erased(set_secret), 0, 0, nullptr},
    {nullptr, "Known", "Integer", 0, KZB_DIRECT, nullptr, FIELD(secret), 0, nullptr},
    {nullptr, "Title", "String", 0, erased(get_title), nullptr, 0, 0, nullptr},
    {nullptr, "TotalSize", "Int64", 0, erased(get_size), nullptr, 0, 0, nullptr},
    {nullptr, "Exact", "Double", 0, erased(get_exact), nullptr, 3, 0, nullptr},
    {nullptr, "Memory", "Memoryblock", 0, erased(get_memory), nullptr, 0, 0, nullptr},
};

MethodDefinition methods[] = {
    {erased(construct_count), nullptr, "Constructor(start as integer)", 0},
    {erased(construct_block), nullptr, "Constructor(block as MemoryBlock, start as integer)", 0},
    {erased(describe), nullptr,
     "Describe(i as integer, l as int64, d as double, b as boolean, c as color, s as string, m as memoryblock, "
     "o as Sampler, a() as integer, f as folderitem, e as double, last as integer) as string",
     0},
    {erased(twice_integer), nullptr, "TwiceInteger(value as integer) as integer", 0},
    {erased(twice_int64), nullptr, "TwiceInt64(value as int64) as int64", 0},
    {erased(half), nullptr, "Half(value as double) as double", 0},
    {erased(negated), nullptr, "Negated(value as boolean) as boolean", 0},
    {erased(inverted), nullptr, "Inverted(value as color) as color", 0},
    {erased(doubled), nullptr, "Doubled(value as string) as string", 0},
    {erased(no_text), nullptr, "NoText as string", 0},
    {erased(no_object), nullptr, "NoObject as Sampler", 0},
    {erased(nothing), nullptr, "Nothing", 0},
    {erased(myself), nullptr, "Myself as Sampler", 0},
    {erased(copied), nullptr, "Copied(value as string) as memoryblock", 0},
    {erased(wrapped), nullptr, "Wrapped(block as memoryblock) as memoryblock", 0},
    {erased(total), nullptr, "Total(values() as integer) as integer", 0},
    {erased(element), nullptr, "Element(values() as integer, index as integer) as integer", 0},
    {erased(sum), nullptr, "Sum(a as integer, b as integer=5, c as integer=&hFFFFFFFF) as integer", 0},
    {erased(defaults), nullptr,
     "Defaults(b as boolean=true, d as double=-2.5, c as color=&cFF8000, s as string=\"a, \"\"b\"\" (c)\", "
     "o as Sampler=nil, a() as integer=nil, l as int64=&h123456789) as string",
     0},
    {erased(convert), nullptr, "Convert(value as string, encoding as integer) as string", 0},
    {erased(path_of), nullptr, "PathOf(item as folderitem, kind as integer) as string", 0},
    {erased(has_entry), nullptr, "HasEntry(name as string) as boolean", 0},
    {erased(integer_property), nullptr, "IntegerProperty(block as memoryblock, name as string) as integer", 0},
    {erased(integer_property), nullptr, "IntegerProperty(sampler as Sampler, name as string) as integer", 0},
    {erased(set_string_property), nullptr,
     "SetStringProperty(sampler as Sampler, name as string, value as string) as boolean", 0},
    {erased(finds_method), nullptr, "FindsMethod(declaration as string) as boolean", 0},
    {erased(fresh), nullptr, "Fresh(className as string) as Sampler", 0},
    {erased(kind_integer), nullptr, "Kind(v as integer) as string", 0},
    {erased(kind_double), nullptr, "Kind(v as double) as string", 0},
    {erased(kind_boolean), nullptr, "Kind(v as boolean) as string", 0},
    {erased(kind_color), nullptr, "Kind(v as color) as string", 0},
    {erased(kind_string), nullptr, "Kind(v as string) as string", 0},
    {erased(kind_block), nullptr, "Kind(v as memoryblock) as string", 0},
    {erased(kind_array), nullptr, "Kind(v() as integer) as string", 0},
    {erased(kind_number), nullptr, "Number(v as double) as string", 0},
    {erased(kind_wide), nullptr, "Number(v as int64) as string", 0},
    {erased(pick_optional), nullptr,
     "Pick(a as integer=1, b as integer=2, c as integer=3, last as integer=4) as string", 0},
    {erased(pick_none), nullptr, "Pick as string", 0},
    {erased(pick_one), nullptr, "Pick(a as integer) as string", 0},
    {erased(item), erased(set_item), "Item(index as integer) as integer", 0},
    {erased(string_at), erased(set_string_at), "StringAt(index as integer) as string", 0},
    {erased(raise_two), nullptr, "RaiseTwo as Sampler", 0},
    {erased(raise_message), nullptr, "RaiseMessage(message as string)", 0},
    {erased(raise_silently), nullptr, "RaiseSilently", 0},
    {erased(raise_nil), nullptr, "RaiseNil", 0},
    {erased(raise_again), nullptr, "RaiseAgain", 0},
    {erased(raise_object), nullptr, "RaiseObject", 0},
    {erased(yield), nullptr, "Yield", 0},
    {erased(raise_and_yield), nullptr, "RaiseAndYield", 0},
    {erased(release_block_twice), nullptr, "ReleaseBlockTwice", 0},
    {erased(use_released_block), nullptr, "UseReleasedBlock", 0},
    {erased(release_string_twice), nullptr, "ReleaseStringTwice", 0},
    {erased(release_string_as_object), nullptr, "ReleaseStringAsObject", 0},
    {erased(write_to_released), nullptr, "WriteToReleased", 0},
    {erased(take_block_for_array), nullptr, "TakeBlockForArray(block as memoryblock)", 0},
    {erased(released_result), nullptr, "ReleasedResult as string", 0},
    {erased(keep_itself), nullptr, "KeepItself", 0},
    {erased(release_itself), nullptr, "ReleaseItself", 0},
    {erased(close_descriptor), nullptr, "CloseDescriptor", 0},
    {erased(close_descriptor_at_the_end), nullptr, "CloseDescriptorAtTheEnd", 0},
    {erased(forget_other), nullptr, "ForgetOther", 0},
    {erased(adopt_other), nullptr, "AdoptOther(other as Sampler)", 0},
};

ConstantDefinition constants[] = {
    {"Zero = 0", 0, 0}, {"Ten = &h0000000A", 0, 0}, {"Minus = &hFFFFFFFF", 0, 0}, {"Below = -15", 0, 0}};

MethodDefinition shared_methods[] = {
    {erased(add), nullptr, "Add(a as integer, b as integer) as integer", 0},
    {erased(count_destroyed), nullptr, "Destroyed as integer", 0},
    {erased(make), nullptr, "Make(start as integer) as Sampler", 0},
};

EventDefinition source_events[] = {{"Supply(a as integer, b as double) as Sampler", 0}};

MethodDefinition source_methods[] = {{erased(ask), nullptr, "Ask(a as integer, b as double) as Sampler", 0}};

template <class Row, size_t count> constexpr kzb_word length(Row (&)[count]) {
    return count;
}

ClassDefinition sampler_class = {
    .version = KZB_INTERFACE_VERSION,
    .name = "Sampler",
    .superclass_name = nullptr,
    .instance_data_size = sizeof(Sampler),
    .instance_data_offset = 0,
    .constructor = nullptr,
    .destructor = destructor,
    .properties = properties,
    .property_count = length(properties),
    .methods = methods,
    .method_count = length(methods),
    .events = nullptr,
    .event_count = 0,
    .event_instances = nullptr,
    .event_instance_count = 0,
    .interfaces = nullptr,
    .bind_descriptions = nullptr,
    .bind_description_count = 0,
    .constants = constants,
    .constant_count = length(constants),
    .flags = 0,
    .shared_properties = nullptr,
    .shared_property_count = 0,
    .shared_methods = shared_methods,
    .shared_method_count = length(shared_methods),
};

ClassDefinition source_class() {
    ClassDefinition definition = {};
    definition.version = KZB_INTERFACE_VERSION;
    definition.name = "Source";
    definition.methods = source_methods;
    definition.method_count = length(source_methods);
    definition.events = source_events;
    definition.event_count = length(source_events);
    return definition;
}
ClassDefinition source_definition = source_class();

} // namespace

extern "C" [[gnu::visibility("default")]] int32_t REALPluginMain(KZBResolver resolver) {
    resolve = resolver;
    HOST(RegisterPluginVersion)(KZB_INTERFACE_VERSION);
    HOST(PluginRegisterClass)(&sampler_class);
    return static_cast<int32_t>(HOST(PluginRegisterClass)(&source_definition));
}

// The calls of the host's language: New, methods, shared methods, and assignments to methods.
#include "audit.h"
#include "call.h"
#include "entries.h"
#include "error.h"
#include "exception.h"
#include "names.h"
#include "overload.h"
#include <array>
#include <map>
#include <optional>

namespace kzb {

namespace {

// The methods of a class of the host, declared by the source file that implements it.
const std::vector<Method> &host_methods(const ObjectClass &type) {
    static std::map<const ObjectClass *, std::vector<Method>> parsed;
    auto [entry, fresh] = parsed.try_emplace(&type);
    if (fresh)
        for (const ObjectMethod &m : type.methods) {
            Method method = {m.function, nullptr, {}, 0};
            if (!kzb_parse_declaration(m.declaration, &method.declaration, nullptr)) continue;
            method.key = name_key(method.declaration.name);
            entry->second.push_back(method);
        }
    return entry->second;
}

std::span<const Method> methods_of(const ObjectClass &type) {
    const ModuleClass *of_module = module_class(type);
    return of_module ? of_module->methods : host_methods(type);
}

bool check_arguments(const kzb_value *arguments, size_t count, const char *name, kzb_error *error) {
    if (!name) return fail(error, KZB_ERROR_USAGE, "the method's name is nil");
    return arguments || count == 0 || fail(error, KZB_ERROR_USAGE, "%s: the arguments are nil", name);
}

bool check_object(KZBObject object, const char *name, kzb_error *error) {
    if (!object) return fail(error, KZB_ERROR_USAGE, "%s was called on nil", name);
    return audit_check(object, Tracked::object, name) ||
           fail(error, KZB_ERROR_USAGE, "%s was called on an object that has been released", name);
}

// Chooses a method and calls it, or its setter with the assigned value.
bool perform(KZBObject object, const Lookup &lookup, std::span<const kzb_value> arguments, const kzb_value *assigned,
             kzb_value *result, kzb_error *error) {
    Choice choice;
    if (!choose(lookup, arguments, choice, error)) return false;
    const kzb_declaration &d = choice.method->declaration;
    FunctionCall call;
    std::array<std::optional<Held>, KZB_MAX_PARAMETERS + 2> held;
    if (object) {
        held[0].emplace(object_value(object));
        call.add(object);
    }
    for (size_t i = 0; i < d.parameter_count; ++i) {
        held[i + 1].emplace(choice.values[i]);
        call.add(choice.values[i], d.parameters[i].type);
    }
    if (!assigned)
        return call_module(module_of(lookup.type), call, choice.method->function, d.result, result, d.name, error);

    Wanted expected = wanted(d.result, d.result_name, module_class(lookup.type));
    if (fit(*assigned, expected, d.name) == no_fit)
        return fail(error, KZB_ERROR_USAGE, "%s.%s, the assigned value (as %s): %s is expected, %s came",
                    lookup.type.name, d.name, d.result_name, describe(expected).c_str(),
                    describe(*assigned, expected).c_str());
    held[d.parameter_count + 1].emplace(*assigned);
    call.add(*assigned, d.result);
    return call_module(module_of(lookup.type), call, choice.method->setter, KZB_TYPE_NONE, nullptr, d.name, error);
}

bool construct(KZBObject object, std::span<const kzb_value> arguments, kzb_error *error) {
    std::span<const Method> methods = methods_of(*object->type);
    if (arguments.empty() && !takes_nothing(methods, "Constructor")) return true;
    return perform(object, {*object->type, methods, "Constructor", "method", false}, arguments, nullptr, nullptr,
                   error);
}

bool may_be_made(const ObjectClass &type) noexcept {
    return type.definition || type.creatable;
}

KZBObject PluginNewInstance(const char *class_name) {
    // A module's own class comes first, whatever other modules have registered since.
    CallFrame *frame = CallFrame::innermost();
    const ObjectClass *type = find_class(class_name, frame ? frame->module : nullptr);
    return type && may_be_made(*type) ? object_new(*type) : nullptr;
}

KZBFunction REALLoadObjectMethod(KZBObject object, const char *declaration) {
    if (!object || !declaration || !audit_check(object, Tracked::object, "REALLoadObjectMethod")) return nullptr;
    if (const ModuleClass *type = module_class(*object->type)) {
        const ClassDefinition &definition = *type->definition;
        for (kzb_word i = 0; i < definition.method_count; ++i)
            if (same_declaration(definition.methods[i].declaration, declaration)) return definition.methods[i].function;
        return nullptr;
    }
    for (const ObjectMethod &method : object->type->methods)
        if (same_declaration(method.declaration, declaration)) return method.function;
    return nullptr;
}

const HostEntry list[] = {KZB_HOST_ENTRY(PluginNewInstance), KZB_HOST_ENTRY(REALLoadObjectMethod)};
const Contribution contribution(list);

} // namespace

} // namespace kzb

using namespace kzb;

KZBObject kzb_new(const char *class_name, const kzb_value *arguments, size_t count, kzb_error *error) {
    return guarded(error, KZBObject(nullptr), [&]() -> KZBObject {
        if (!check_arguments(arguments, count, class_name, error)) return nullptr;
        const ObjectClass *type = class_named(class_name, error);
        if (!type) return nullptr;
        if (!may_be_made(*type)) {
            fail(error, KZB_ERROR_USAGE, "New makes no objects of class %s", type->name);
            return nullptr;
        }
        KZBObject object = object_new(*type);
        if (!object) throw std::bad_alloc();
        if (construct(object, {arguments, count}, error)) return object;
        object_release(object, "kzb_new");
        return nullptr;
    });
}

int kzb_call(KZBObject object, const char *method, const kzb_value *arguments, size_t count, kzb_value *result,
             kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!check_arguments(arguments, count, method, error) || !check_object(object, method, error)) return 0;
        Lookup lookup = {*object->type, methods_of(*object->type), method, "method", false};
        return perform(object, lookup, {arguments, count}, nullptr, result, error);
    });
}

int kzb_assign(KZBObject object, const char *method, const kzb_value *arguments, size_t count, const kzb_value *value,
               kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!check_arguments(arguments, count, method, error) || !check_object(object, method, error)) return 0;
        if (!value) return fail(error, KZB_ERROR_USAGE, "%s: there is no value to assign", method);
        Lookup lookup = {*object->type, methods_of(*object->type), method, "method", true};
        return perform(object, lookup, {arguments, count}, value, nullptr, error);
    });
}

int kzb_call_shared(const char *class_name, const char *method, const kzb_value *arguments, size_t count,
                    kzb_value *result, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!check_arguments(arguments, count, method, error)) return 0;
        const ObjectClass *type = class_named(class_name, error);
        if (!type) return 0;
        const ModuleClass *of_module = module_class(*type);
        std::span<const Method> methods;
        if (of_module) methods = of_module->shared_methods;
        return perform(nullptr, {*type, methods, method, "shared method", false}, {arguments, count}, nullptr, result,
                       error);
    });
}

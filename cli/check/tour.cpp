#include "tour.h"

#include "host_entries.h"
#include "process.h"
#include "runtime/names.h"

#include <algorithm>
#include <dirent.h>
#include <unistd.h>
#include <utility>

namespace kzb::cli::check {

namespace {

std::vector<std::string> complaints;

void complain(const std::string &text) {
    complaints.push_back(text);
}

// A reference that is dropped at the end.
class Holder {
public:
    explicit Holder(KZBObject object) : value_() {
        value_.kind = object ? KZB_OBJECT : KZB_NIL;
        value_.object = object;
    }
    ~Holder() { kzb_release(&value_); }
    Holder(const Holder &) = delete;
    Holder &operator=(const Holder &) = delete;

    KZBObject object() const { return value_.object; }

private:
    kzb_value value_;
};

template <class Work> void for_each_class(const Subject &subject, const Work &work) {
    for (size_t i = 0; const ClassDefinition *definition = kzb_module_class(subject.module, i); ++i) work(*definition);
}

bool is_constructor(const Declared &d) {
    return same_name(d.declaration.name, "Constructor");
}

// A raised exception is an answer; a call that cannot be made is not.
void expect_done(int done, const kzb_error &error) {
    if (!done && error.status != KZB_ERROR_EXCEPTION) complain(error.message);
}

void fill(Arguments &arguments, const kzb_declaration &d, Style style) {
    for (size_t i = 0; i < d.parameter_count; ++i) arguments.add(d.parameters[i], style);
}

// Calls a method on an object, then its setter, where it has one.
void call_method(const Subject &subject, const Declared &d, KZBObject object, Style style, Random &random) {
    Arguments arguments(subject, random);
    fill(arguments, d.declaration, style);
    kzb_error error = {};
    expect_done(kzb_call(object, d.declaration.name, arguments.data(), arguments.size(), nullptr, &error), error);
    if (!d.method->setter) return;
    const kzb_value assigned = arguments.value(d.declaration.result, d.declaration.result_name, style);
    expect_done(kzb_assign(object, d.declaration.name, arguments.data(), arguments.size(), &assigned, &error), error);
}

void remove_files(const Subject &subject) {
    DIR *folder = opendir(subject.scratch.c_str());
    if (!folder) return;
    while (const dirent *entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        complain("the file of a released object is left behind");
        unlink((subject.scratch + "/" + name).c_str());
    }
    closedir(folder);
}

// Calls a Constructor; the numbers in the arguments are of the style, or only the one at a place, the others sound.
void construct(const Subject &subject, const ClassDefinition &type, const Declared &d, Style style, size_t only,
               Random &random) {
    {
        Arguments arguments(subject, random);
        for (size_t i = 0; i < d.declaration.parameter_count; ++i)
            arguments.add(d.declaration.parameters[i],
                          only == d.declaration.parameter_count || only == i ? style : Style::sound);
        kzb_error error = {};
        const Holder made(kzb_new(type.name, arguments.data(), arguments.size(), &error));
        expect_done(made.object() != nullptr, error);
    }
    remove_files(subject);
}

struct NamedStyle {
    Style style;
    const char *name;
};
constexpr NamedStyle constructor_styles[] = {{Style::zero, "nil and zeros"},
                                             {Style::sound, "small numbers"},
                                             {Style::negative, "negative numbers"},
                                             {Style::huge, "huge numbers"}};

void add_constructor(const Subject &subject, const ClassDefinition &type, const Declared &d, Operations &all) {
    const size_t count = d.declaration.parameter_count;
    const auto add = [&](NamedStyle style, size_t only) {
        const std::string of = only == count ? "" : std::string(" for ") + d.declaration.parameters[only].name;
        const std::string name = "calling " + d.text + " with " + style.name + of;
        all.push_back({name, [&subject, &type, d, style, only, name] {
                           Random random(subject, name);
                           construct(subject, type, d, style.style, only, random);
                       }});
    };
    for (const NamedStyle &style : constructor_styles) add(style, count);
    for (const NamedStyle &style : constructor_styles)
        for (size_t only = 0; only < count && count > 1 && style.style != Style::sound; ++only) add(style, only);
}

void call_shared(const Subject &subject, const ClassDefinition &type, const Declared &d, Style style, Random &random) {
    Arguments arguments(subject, random);
    fill(arguments, d.declaration, style);
    kzb_error error = {};
    expect_done(kzb_call_shared(type.name, d.declaration.name, arguments.data(), arguments.size(), nullptr, &error),
                error);
}

} // namespace

kzb_module *load_module(Subject &subject) {
    step("loading the module");
    kzb_use_resolver(resolve_entry);
    kzb_error error = {};
    subject.module = kzb_module_load(subject.path.c_str(), &error);
    if (!subject.module) failure(error.message);
    return subject.module;
}

std::vector<std::string> take_complaints() {
    return std::exchange(complaints, {});
}

Operations object_operations(const Subject &subject) {
    Operations all;
    for_each_class(subject, [&](const ClassDefinition &type) {
        all.push_back({std::string("making and releasing a ") + type.name, [&type] {
                           const Holder first(fresh_object(type.name)), second(fresh_object(type.name));
                           if (!first.object() || !second.object())
                               complain(std::string("no object of class ") + type.name + " can be made");
                       }});
    });
    return all;
}

Operations reading_operations(const Subject &subject) {
    Operations all;
    for_each_class(subject, [&](const ClassDefinition &type) {
        for (kzb_word i = 0; i < type.property_count; ++i) {
            const PropertyDefinition &p = type.properties[i];
            if (!p.getter) continue;
            all.push_back({std::string("reading ") + type.name + "." + p.name, [&type, &p] {
                               const Holder self(fresh_object(type.name));
                               kzb_value value = {};
                               kzb_error error = {};
                               expect_done(kzb_get(self.object(), p.name, &value, &error), error);
                               kzb_release(&value);
                           }});
        }
    });
    return all;
}

Operations writing_operations(const Subject &subject) {
    Operations all;
    for_each_class(subject, [&](const ClassDefinition &type) {
        for (kzb_word i = 0; i < type.property_count; ++i) {
            const PropertyDefinition &p = type.properties[i];
            if (!p.setter) continue;
            const std::string name = std::string("assigning to ") + type.name + "." + p.name;
            all.push_back({name, [&subject, &type, &p, name] {
                               kzb_declaration as_result = {};
                               kzb_parse_declaration((std::string("Value as ") + p.type_name).c_str(), &as_result,
                                                     nullptr);
                               Random random(subject, name);
                               const Holder self(fresh_object(type.name));
                               Arguments values(subject, random);
                               for (Style style : {Style::zero, Style::sound, Style::wild}) {
                                   const kzb_value value = values.value(as_result.result, p.type_name, style);
                                   kzb_error error = {};
                                   expect_done(kzb_set(self.object(), p.name, &value, &error), error);
                               }
                           }});
        }
    });
    return all;
}

Operations nil_call_operations(const Subject &subject) {
    Operations all;
    for_each_class(subject, [&](const ClassDefinition &type) {
        for (const Declared &d : declared(type, type.methods, type.method_count)) {
            const std::string name = "calling " + d.text + " with nil and zeros";
            all.push_back({name, [&subject, &type, d, name] {
                               Random random(subject, name);
                               const Holder self(fresh_object(type.name));
                               call_method(subject, d, self.object(), Style::zero, random);
                           }});
        }
    });
    return all;
}

Operations random_call_operations(const Subject &subject, int rounds) {
    Operations all;
    for_each_class(subject, [&](const ClassDefinition &type) {
        for (const Declared &d : declared(type, type.methods, type.method_count)) {
            if (is_constructor(d)) continue;
            const std::string wild = "calling " + d.text + " with random arguments on an object not constructed";
            all.push_back({wild, [&subject, &type, d, wild, rounds] {
                               Random random(subject, wild);
                               for (int round = 0; round < rounds; ++round) {
                                   const Holder self(fresh_object(type.name));
                                   call_method(subject, d, self.object(), Style::wild, random);
                               }
                           }});
            const std::string sound = "calling " + d.text + " with small random arguments on a constructed object";
            all.push_back({sound, [&subject, &type, d, sound, rounds] {
                               Random random(subject, sound);
                               for (int round = 0; round < rounds; ++round) {
                                   const Holder self(sound_object(subject, type, random));
                                   call_method(subject, d, self.object(), Style::sound, random);
                               }
                           }});
        }
    });
    // Fisher and Yates, so that the order is the same with every standard library.
    Random order(subject, "order");
    for (size_t left = all.size(); left > 1; --left)
        std::swap(all[left - 1], all[order.below(static_cast<uint32_t>(left))]);
    return all;
}

Operations constructor_operations(const Subject &subject) {
    Operations all;
    for_each_class(subject, [&](const ClassDefinition &type) {
        for (const Declared &d : declared(type, type.methods, type.method_count))
            if (is_constructor(d)) add_constructor(subject, type, d, all);
    });
    return all;
}

Operations shared_call_operations(const Subject &subject) {
    Operations all;
    for_each_class(subject, [&](const ClassDefinition &type) {
        for (const Declared &d : declared(type, type.shared_methods, type.shared_method_count)) {
            const std::string name = "calling the shared method " + d.text;
            all.push_back({name, [&subject, &type, d, name] {
                               Random random(subject, name);
                               // The last call takes back what the module may keep of the one before.
                               for (Style style : {Style::zero, Style::sound, Style::zero})
                                   call_shared(subject, type, d, style, random);
                           }});
        }
    });
    return all;
}

Operations whole_tour(const Subject &subject) {
    Operations all = object_operations(subject);
    for (Operations part :
         {reading_operations(subject), writing_operations(subject), nil_call_operations(subject),
          random_call_operations(subject, 1), constructor_operations(subject), shared_call_operations(subject)})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

} // namespace kzb::cli::check

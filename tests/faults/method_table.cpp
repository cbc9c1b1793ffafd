#include "faults/method_table.h"

#include "faults/rows.h"

#include <algorithm>
#include <cstdlib>

namespace kzb::test {

namespace {

std::vector<kzb_value> raw(const std::vector<Value> &values) {
    std::vector<kzb_value> result;
    for (const Value &value : values) result.push_back(value.raw());
    return result;
}

bool holds_zeros(const Bytes &bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

std::string class_part(const std::string &exception) {
    return exception.substr(0, exception.find(':'));
}

bool is_failure(FailsWith failure, const Observation &before, const Observation &seen) {
    std::vector<Seen> expected = before.arguments;
    switch (failure) {
    case FailsWith::nil: return seen.result.shape == "nil" && seen.arguments == expected;
    case FailsWith::no: return seen.result.shape == "false" && seen.arguments == expected;
    case FailsWith::nothing: return seen.arguments == expected;
    case FailsWith::invalid: expected[0] = {"image that is not Valid", {}, {}}; return seen.arguments == expected;
    }
    return false;
}

// Whether each image is either done or as it was.
bool is_untouched_or_right(const Observation &before, const Observation &right, const Observation &seen) {
    for (size_t i = 0; i < seen.arguments.size(); ++i)
        if (seen.arguments[i] != before.arguments[i] && seen.arguments[i] != right.arguments[i]) return false;
    return seen.result == right.result || holds_zeros(seen.result.bytes) ||
           std::any_of(before.arguments.begin(), before.arguments.end(),
                       [&](const Seen &argument) { return argument.bytes == seen.result.bytes; });
}

// Whether nothing is touched that the call does not write to, and the rest keeps its shape.
bool only_written_differs(const Observation &before, const Observation &right, const Observation &seen) {
    for (size_t i = 0; i < seen.arguments.size(); ++i)
        if (seen.arguments[i].shape != right.arguments[i].shape ||
            (right.arguments[i] == before.arguments[i] && seen.arguments[i] != before.arguments[i]))
            return false;
    return true;
}

std::string differences(const Observation &before, const Observation &right, const Observation &seen) {
    const auto pixels = [](const Seen &a, const Seen &b) {
        return std::string(a.storage == b.storage ? "" : " stored otherwise") +
               (a.bytes == b.bytes ? "" : " with other bytes");
    };
    std::string text = "gave " + seen.result.shape + pixels(seen.result, right.result) + " instead of " +
                       right.result.shape;
    if (seen.exception != right.exception) text += ", raised \"" + seen.exception + "\"";
    for (size_t i = 0; i < seen.arguments.size(); ++i) {
        if (seen.arguments[i] == right.arguments[i]) continue;
        text += ", argument " + std::to_string(i) + " is " + seen.arguments[i].shape;
        text += seen.arguments[i] == before.arguments[i] ? std::string(" as before") : pixels(seen.arguments[i], right.arguments[i]);
    }
    return text;
}

} // namespace

const std::vector<Row> &method_table() {
    static const Rows table = [] {
        Rows rows;
        add_image_rows(rows);
        add_row_access_rows(rows);
        add_picture_rows(rows);
        add_geometry_rows(rows);
        add_filter_rows(rows);
        add_property_rows(rows);
        return rows;
    }();
    return table;
}

std::vector<std::vector<const Row *>> rows_by_declaration() {
    std::vector<std::vector<const Row *>> runs;
    for (const Row &row : method_table()) {
        if (runs.empty() || runs.back().back()->declaration != row.declaration) runs.emplace_back();
        runs.back().push_back(&row);
    }
    return runs;
}

std::string plain_name(const std::string &declaration) {
    return declaration.substr(0, declaration.find_first_of("( "));
}

bool is_image_argument(const Row &row, size_t index) {
    kzb_declaration parsed = {};
    if (row.kind == Kind::getter || row.kind == Kind::setter) return false;
    if (!kzb_parse_declaration(row.declaration.c_str(), &parsed, nullptr)) throw std::runtime_error(row.declaration);
    return index < parsed.parameter_count && std::string_view(parsed.parameters[index].type_name) == "PictureKZB";
}

Call arrange(const Row &row) {
    restart_noise();
    Call call = row.make();
    // Some filters draw from the C library's generator.
    std::srand(1);
    return call;
}

Done perform(const Row &row, const Call &call) {
    const std::string name = plain_name(row.declaration);
    const auto arguments = raw(call.arguments);
    const kzb_value assigned = call.assigned.raw();
    kzb_value result = {};
    kzb_error error = {};
    bool done = false;
    switch (row.kind) {
    case Kind::method:
        done = kzb_call(call.object.get(), name.c_str(), arguments.data(), arguments.size(), &result, &error);
        break;
    case Kind::assignment:
        done = kzb_assign(call.object.get(), name.c_str(), arguments.data(), arguments.size(), &assigned, &error);
        break;
    case Kind::shared:
        done = kzb_call_shared(name == "SetFactory" ? "PictureFactoryKZB" : "PictureKZB", name.c_str(),
                               arguments.data(), arguments.size(), &result, &error);
        break;
    case Kind::getter: done = kzb_get(call.object.get(), name.c_str(), &result, &error); break;
    case Kind::setter: done = kzb_set(call.object.get(), name.c_str(), &assigned, &error); break;
    }
    if (!done && error.status != KZB_ERROR_EXCEPTION) throw std::runtime_error(row.name() + ": " + error.message);
    return {Value::adopt(result), done ? "" : std::string(error.exception) + ": " + error.message};
}

Observation observe(const Done &done, const Call &call) {
    Observation seen = {look_at(done.result), done.exception, {}};
    if (call.object) seen.arguments.push_back(look_at(call.object));
    for (const Value &argument : call.arguments) seen.arguments.push_back(look_at(argument));
    seen.arguments.push_back(look_at(call.assigned));
    if (done.result.kind() == KZB_OBJECT) {
        if (done.result.object() == call.object.get()) seen.result.shape += ", the object itself";
        for (size_t i = 0; i < call.arguments.size(); ++i)
            if (call.arguments[i].kind() == KZB_OBJECT && call.arguments[i].object() == done.result.object())
                seen.result.shape += ", argument " + std::to_string(i + 1);
    }
    return seen;
}

std::string judge(const Row &row, Shortage shortage, const Observation &before, const Observation &right,
                  const Observation &seen) {
    if (seen == right) return {};
    // An exception may come without its message, or not at all.
    const bool excepted = seen.exception.empty() || class_part(seen.exception) == class_part(right.exception);
    if (excepted && is_failure(row.fails, before, seen)) return {};
    const bool same_shape = seen.result.shape == right.result.shape;
    if (excepted && shortage == Shortage::untouched && same_shape && is_untouched_or_right(before, right, seen))
        return {};
    const bool failed_midway = seen.result.shape == "nil";
    if (excepted && shortage == Shortage::pixels && (same_shape || failed_midway) &&
        only_written_differs(before, right, seen))
        return {};
    return differences(before, right, seen);
}

} // namespace kzb::test

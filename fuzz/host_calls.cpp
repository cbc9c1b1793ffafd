#include "host_calls.h"

#include "fixtures/layouts.h"
#include "module.h"

namespace kzb::fuzz {

namespace {

std::vector<kzb_value> raw(const std::vector<Value> &values) {
    std::vector<kzb_value> result;
    for (const Value &value : values) result.push_back(value.raw());
    return result;
}

void require_sound(bool done, const kzb_error &error) {
    if (!done && error.status != KZB_ERROR_EXCEPTION && error.status != KZB_ERROR_MEMORY) found(error.message);
}

int32_t integer(const Value &image, const char *property) {
    return static_cast<int32_t>(get(image, property).integer());
}

} // namespace

Value new_image(const std::vector<Value> &arguments) {
    kzb_error error = {};
    const auto values = raw(arguments);
    KZBObject image = kzb_new("PictureKZB", values.data(), values.size(), &error);
    require_sound(image != nullptr, error);
    return Value::adopt(image);
}

Value call(const Value &object, const char *method, const std::vector<Value> &arguments) {
    if (object.is_nil()) return {};
    kzb_error error = {};
    kzb_value result = {};
    const auto values = raw(arguments);
    require_sound(kzb_call(object.object(), method, values.data(), values.size(), &result, &error), error);
    return Value::adopt(result);
}

Value call_static(const char *class_name, const char *method, const std::vector<Value> &arguments) {
    kzb_error error = {};
    kzb_value result = {};
    const auto values = raw(arguments);
    require_sound(kzb_call_shared(class_name, method, values.data(), values.size(), &result, &error), error);
    return Value::adopt(result);
}

void assign(const Value &object, const char *method, const std::vector<Value> &arguments, const Value &value) {
    if (object.is_nil()) return;
    kzb_error error = {};
    const auto values = raw(arguments);
    const kzb_value assigned = value.raw();
    require_sound(kzb_assign(object.object(), method, values.data(), values.size(), &assigned, &error), error);
}

Value get(const Value &object, const char *property) {
    kzb_error error = {};
    kzb_value result = {};
    require_sound(kzb_get(object.object(), property, &result, &error), error);
    return Value::adopt(result);
}

void set(const Value &object, const char *property, const Value &value) {
    if (object.is_nil()) return;
    kzb_error error = {};
    const kzb_value assigned = value.raw();
    require_sound(kzb_set(object.object(), property, &assigned, &error), error);
}

Shape shape_of(const Value &image) {
    if (image.is_nil()) return {};
    return {get(image, "Valid").boolean(), get(image, "IsMapping").boolean(), integer(image, "Width"),
            integer(image, "Height"),      integer(image, "ImageFormat"),     integer(image, "PixelSize"),
            integer(image, "RowSize"),     integer(image, "RowOffset")};
}

int32_t pixel_size(int32_t format) {
    return format < 1 || format > 21 ? 0 : test::layout(format).pixel_size;
}

} // namespace kzb::fuzz

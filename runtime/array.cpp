#include "array.h"

#include "audit.h"
#include "entries.h"
#include <climits>
#include <cstdlib>
#include <cstring>
#include <picturekzb/runtime.h>

namespace kzb {

namespace {

struct IntegerArray {
    int32_t *values = nullptr;
    int32_t count = 0;
};

void finalize(KZBObject object) noexcept {
    std::free(payload<IntegerArray>(object).values);
}

int32_t RuntimeUBound(KZBArray array) {
    KZBObject object = as_object(array);
    return object_is(object, array_class, "RuntimeUBound") ? payload<IntegerArray>(object).count - 1 : -1;
}

void RuntimeDirectReadIntArray(KZBArray array, int32_t index, int32_t *value) {
    KZBObject object = as_object(array);
    if (!object_is(object, array_class, "RuntimeDirectReadIntArray")) return;
    const IntegerArray &integers = payload<IntegerArray>(object);
    if (index < 0 || index >= integers.count)
        misuse("RuntimeDirectReadIntArray was asked for element %d of %d", static_cast<int>(index),
               static_cast<int>(integers.count));
    else
        *value = integers.values[index];
}

const HostEntry list[] = {KZB_HOST_ENTRY(RuntimeUBound), KZB_HOST_ENTRY(RuntimeDirectReadIntArray)};
const ObjectClass *const classes[] = {&array_class};
const Contribution contribution(list, classes);

} // namespace

const ObjectClass array_class = {.name = "Array", .payload_size = sizeof(IntegerArray), .finalize = finalize};

} // namespace kzb

using namespace kzb;

KZBArray kzb_array_new(const int32_t *values, size_t count) {
    if (count > INT32_MAX || (!values && count > 0)) return nullptr;
    auto copy = static_cast<int32_t *>(std::malloc(count > 0 ? count * sizeof(int32_t) : 1));
    if (!copy) return nullptr;
    if (count > 0) std::memcpy(copy, values, count * sizeof(int32_t));
    KZBObject array = object_make<IntegerArray>(array_class, IntegerArray{copy, static_cast<int32_t>(count)});
    if (!array) std::free(copy);
    return reinterpret_cast<KZBArray>(array);
}

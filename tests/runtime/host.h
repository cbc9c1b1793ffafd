// The embedded host as its tests use it.
#ifndef KZB_TESTS_RUNTIME_HOST_H
#define KZB_TESTS_RUNTIME_HOST_H

#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <picturekzb/runtime.h>
#include <string>
#include <utility>
#include <vector>

namespace kzb_test {

// A value that releases what it holds.
class Value {
public:
    Value() : value() {}
    explicit Value(const kzb_value &taken) : value(taken) {}
    Value(Value &&other) noexcept : value(std::exchange(other.value, {})) {}
    Value &operator=(Value &&other) noexcept {
        std::swap(value, other.value);
        return *this;
    }
    ~Value() { kzb_release(&value); }

    const kzb_value *operator->() const { return &value; }
    const kzb_value &operator*() const { return value; }
    kzb_value *receive() {
        kzb_release(&value);
        return &value;
    }

    std::string text() const {
        EXPECT_EQ(value.kind, KZB_STRING);
        if (value.kind != KZB_STRING || !value.string) return {};
        return {value.string->text, static_cast<size_t>(value.string->length)};
    }

private:
    kzb_value value;
};

inline Value plain(kzb_kind kind, int64_t integer) {
    kzb_value value = {};
    value.kind = kind;
    value.integer = integer;
    return Value(value);
}
inline Value nil() {
    return Value();
}
inline Value integer(int64_t number) {
    return plain(KZB_INTEGER, number);
}
inline Value boolean(int64_t number) {
    return plain(KZB_BOOLEAN, number);
}
inline Value color(int64_t number) {
    return plain(KZB_COLOR, number);
}
inline Value number(double number) {
    kzb_value value = {};
    value.kind = KZB_DOUBLE;
    value.number = number;
    return Value(value);
}
inline Value text(const std::string &bytes, uint32_t encoding = KZB_ENCODING_UTF8) {
    kzb_value value = {};
    value.kind = KZB_STRING;
    value.string = kzb_string_new(bytes.data(), bytes.size(), encoding);
    return Value(value);
}
// Takes the reference over.
template <class Reference> Value object(Reference reference) {
    kzb_value value = {};
    value.kind = KZB_OBJECT;
    value.object = reinterpret_cast<KZBObject>(reference);
    return Value(value);
}
inline Value block(const std::string &bytes) {
    return object(kzb_block_new(bytes.data(), bytes.size()));
}
inline Value array(std::initializer_list<int32_t> values) {
    kzb_value value = {};
    value.kind = KZB_ARRAY;
    value.array = kzb_array_new(values.begin(), values.size());
    return Value(value);
}

// Arguments of a call, by position and by name; they stay the caller's.
class Arguments {
public:
    Arguments() = default;
    template <class... Values> explicit Arguments(const Values &...given) : values{*given...} {}
    Arguments &named(const char *name, const Value &value) {
        values.push_back(*value);
        values.back().name = name;
        return *this;
    }
    const kzb_value *data() const { return values.data(); }
    size_t size() const { return values.size(); }

private:
    std::vector<kzb_value> values;
};

// Every test begins and ends with nothing alive, and notes what the host calls a misuse.
class HostTest : public testing::Test {
protected:
    void SetUp() override {
        kzb_on_misuse([](const char *line, void *lines) { static_cast<HostTest *>(lines)->misuses.push_back(line); },
                      this);
        ASSERT_EQ(kzb_live_count(nullptr), 0U);
    }

    void TearDown() override {
        EXPECT_EQ(kzb_live_count(nullptr), 0U);
        EXPECT_EQ(misuses, expected_misuses);
        kzb_on_misuse(nullptr, nullptr);
    }

    std::vector<std::string> misuses, expected_misuses;
    kzb_error error = {};
};

// With the well-behaved module, and an object of it. Calls that should work are checked to.
class SamplerTest : public HostTest {
protected:
    void SetUp() override {
        HostTest::SetUp();
        module = kzb_module_load(MODULES "sampler.so", &error);
        ASSERT_TRUE(module) << error.message;
        sampler = make(integer(7));
    }

    void TearDown() override {
        sampler = nil();
        EXPECT_EQ(kzb_live_references(), 0U);
        kzb_module_unload(module);
        HostTest::TearDown();
    }

    template <class... Values> Value make(const Values &...arguments) {
        Arguments given(arguments...);
        KZBObject made = kzb_new("Sampler", given.data(), given.size(), &error);
        EXPECT_TRUE(made) << error.message;
        return object(made);
    }

    template <class... Values> Value call(const char *method, const Values &...arguments) {
        return call_with(method, Arguments(arguments...));
    }
    Value call_with(const char *method, const Arguments &arguments) {
        Value result;
        EXPECT_TRUE(kzb_call(sampler->object, method, arguments.data(), arguments.size(), result.receive(), &error))
            << error.message;
        return result;
    }

    // Checks that a call fails, and gives the sentence.
    template <class... Values> std::string mistake(const char *method, const Values &...arguments) {
        return mistake_with(method, Arguments(arguments...));
    }
    std::string mistake_with(const char *method, const Arguments &arguments, kzb_status status = KZB_ERROR_USAGE) {
        Value result;
        error = {};
        EXPECT_FALSE(kzb_call(sampler->object, method, arguments.data(), arguments.size(), result.receive(), &error));
        EXPECT_EQ(result->kind, KZB_NIL);
        EXPECT_EQ(error.status, status);
        return error.message;
    }

    Value get(const char *property) {
        Value result;
        EXPECT_TRUE(kzb_get(sampler->object, property, result.receive(), &error)) << error.message;
        return result;
    }
    void set(const char *property, const Value &value) {
        EXPECT_TRUE(kzb_set(sampler->object, property, &*value, &error)) << error.message;
    }

    kzb_module *module = nullptr;
    Value sampler;
};

} // namespace kzb_test

#endif

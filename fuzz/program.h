// A program of calls, driven by the fuzzer's bytes: any method with any arguments, properties, user code in yields and
// in factories.
#pragma once

#include "module.h"
#include "world.h"

namespace kzb::fuzz {

class Program {
public:
    Program(const uint8_t *bytes, size_t count);
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    void run();

private:
    void step();
    void other_step(size_t kind);
    void call_method(const Method &method);
    void use_property();
    std::vector<Value> arguments_of(const Method &method);
    Value argument(const kzb_parameter &parameter);
    Value object_argument(const char *type_name);
    void assign_rows(const Method &method, const Value &image, const std::vector<Value> &arguments);
    Value new_picture(int32_t width, int32_t height, int32_t format);

    static KZBObject handle_new_picture(KZBObject factory, int32_t width, int32_t height, int32_t format);
    static int handle_yield(void *program);

    Feed feed_;
    World world_;
    int depth_ = 0; // of user code inside calls
};

} // namespace kzb::fuzz

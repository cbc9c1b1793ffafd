#include "kernels/level.h"

#include <cstdlib>
#include <cstring>

namespace kzb::kernels {

namespace {

Level choose() {
    const char *named = std::getenv("KZB_ISA");
    Level highest = Level::baseline;
    for (Level level : every_level) {
        if (!runs(level)) continue;
        if (named != nullptr && std::strcmp(named, name_of(level)) == 0) return level;
        highest = level;
    }
    return highest;
}

} // namespace

bool runs(Level level) {
#ifdef KZB_X86
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                      __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
                        __builtin_cpu_supports("avx512vl");
    switch (level) {
    case Level::baseline:
        return true;
    case Level::avx2:
        return avx2;
    case Level::avx512:
        return avx512;
    case Level::avx512vbmi:
        return avx512 && __builtin_cpu_supports("avx512vbmi");
    }
    return false;
#else
    return level == Level::baseline;
#endif
}

Level level_in_use() {
    static const Level chosen = choose();
    return chosen;
}

} // namespace kzb::kernels

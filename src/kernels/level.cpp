#include "kernels/level.h"

#include <cstdlib>
#include <cstring>

namespace kzb::kernels {

namespace {

Level highest() {
    for (Level level : {Level::avx512, Level::avx2})
        if (runs(level)) return level;
    return Level::baseline;
}

Level choose() {
    const char *named = std::getenv("KZB_ISA");
    for (Level level : {Level::baseline, Level::avx2, Level::avx512})
        if (named != nullptr && std::strcmp(named, name_of(level)) == 0 && runs(level)) return level;
    return highest();
}

} // namespace

bool runs(Level level) {
#ifdef KZB_X86
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                      __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
                        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi");
    return level == Level::baseline || (level == Level::avx2 ? avx2 : avx512);
#else
    return level == Level::baseline;
#endif
}

Level level_in_use() {
    static const Level chosen = choose();
    return chosen;
}

} // namespace kzb::kernels

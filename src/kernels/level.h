// Which of the processor's instruction sets the row functions use.
#pragma once

#include <array>
#include <cstddef>

#if defined(__x86_64__) || defined(__i386__)
#define KZB_X86 1
#endif

namespace kzb::kernels {

// Each includes those before it. avx2: with FMA, BMI and BMI2. avx512: F, BW, CD, DQ and VL. avx512vbmi: with the byte
// permutes of VBMI.
enum class Level { baseline, avx2, avx512, avx512vbmi };

inline constexpr std::array every_level = {Level::baseline, Level::avx2, Level::avx512, Level::avx512vbmi};
inline constexpr std::array<const char *, every_level.size()> level_names = {"baseline", "avx2", "avx512",
                                                                             "avx512vbmi"};

constexpr const char *name_of(Level level) {
    return level_names[static_cast<size_t>(level)];
}

// Whether this build has the level and this processor runs it.
bool runs(Level level);

// The level named by the environment's KZB_ISA; the highest that runs here when there is none, or it does not run here.
Level level_in_use();

} // namespace kzb::kernels

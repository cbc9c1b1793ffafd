// The processor's vector functions, for row functions that are written by hand.
#pragma once

#include "kernels/level.h"

#ifdef KZB_X86

#include <immintrin.h>

// The compiler's own header leaves registers undefined on purpose.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#endif

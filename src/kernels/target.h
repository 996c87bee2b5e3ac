// target.h: marks the part of a file that may use an instruction set beyond the compiler's baseline.
//
// As a pragma and not as an option for the whole file: inline functions of headers then keep the baseline,
// and the linker cannot pick a copy of them that an older processor would trap on. Includes come before.
//
//     STOPNGO_TARGET_BEGIN("avx2")
//     …
//     STOPNGO_TARGET_END
#pragma once

#define STOPNGO_PRAGMA(text) _Pragma(#text)

#if defined(__clang__)
#define STOPNGO_TARGET_BEGIN(isa) \
  STOPNGO_PRAGMA(clang attribute push(__attribute__((target(isa))), apply_to = function))
#define STOPNGO_TARGET_END STOPNGO_PRAGMA(clang attribute pop)
#else
#define STOPNGO_TARGET_BEGIN(isa) STOPNGO_PRAGMA(GCC push_options) STOPNGO_PRAGMA(GCC target(isa))
#define STOPNGO_TARGET_END STOPNGO_PRAGMA(GCC pop_options)
#endif

/// @file
/// Instruction sets that the SIMD sources are compiled for: SSE4, AVX2 and AVX-512 on x86-64, with
/// plain code for machines before SSE4; NEON on AArch64. Include before Highway.
#pragma once

// Arrays of vectors need a size that the compiler knows, which SVE and RVV do not give. SSSE3 and
// AVX3_DL add nothing to their neighbours here, and each costs a copy of all the code.
#define ZEL_UNUSED_TARGETS \
  (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV | HWY_SSSE3 | HWY_AVX3_DL)
// Builds that take long for every instruction set do without AVX-512.
#ifdef ZEL_WITHOUT_AVX512
#define HWY_DISABLED_TARGETS (ZEL_UNUSED_TARGETS | HWY_AVX3)
#else
#define HWY_DISABLED_TARGETS ZEL_UNUSED_TARGETS
#endif

// v128.h: vectors of 16 bytes, alike for SSE4.1 and NEON, for algorithms that both share.
//
// A shared algorithm is text (median.inc) that the file of an instruction set includes amid its own
// namespace and target; it finds these operations, or wider ones of the same names, by plain lookup.
// Everything here is always inlined, so no copy compiled for one instruction set can be called from another.
#pragma once

#include <cstddef>

#include "bitclip.h"
#include "target.h"

#if defined(__aarch64__)
#include <arm_neon.h>
#else
#include <immintrin.h>
#endif

#define STOPNGO_INLINE [[gnu::always_inline]] static inline

#if !defined(__aarch64__)
STOPNGO_TARGET_BEGIN("sse4.1")
#endif

namespace v128 {

constexpr int kBytes = 16;

/// Where vectors are longer, their first half from Lower and the second from Upper.
// LCOV_EXCL_START: named by what is shared with longer vectors, and run with those alone.
template <class Vector>
STOPNGO_INLINE Vector LowerHalf(Vector Lower, Vector) {
  return Lower;
}
// LCOV_EXCL_STOP

#if defined(__aarch64__)

using Bytes = uint8x16_t;

STOPNGO_INLINE Bytes Load(const data_08* From) { return vld1q_u8(From); }
STOPNGO_INLINE void Store(data_08* To, Bytes v) { vst1q_u8(To, v); }
STOPNGO_INLINE Bytes Broadcast(data_08 Value) { return vdupq_n_u8(Value); }
STOPNGO_INLINE Bytes Min(Bytes a, Bytes b) { return vminq_u8(a, b); }
STOPNGO_INLINE Bytes Max(Bytes a, Bytes b) { return vmaxq_u8(a, b); }
/// The last lane of a 16 in every lane; there is one 16.
template <int>
STOPNGO_INLINE Bytes LastLane(Bytes v) {
  return vdupq_laneq_u8(v, 15);
}
/// Every lane moves N places up in its 16, the last N of Fill come in.
template <int N>
STOPNGO_INLINE Bytes MoveUp(Bytes v, Bytes Fill) {
  return vextq_u8(Fill, v, (16 - N) % 16);
}

#else

using Bytes = __m128i;

STOPNGO_INLINE Bytes Load(const data_08* From) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(From));
}
STOPNGO_INLINE void Store(data_08* To, Bytes v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(To), v); }
STOPNGO_INLINE Bytes Broadcast(data_08 Value) { return _mm_set1_epi8(static_cast<char>(Value)); }
STOPNGO_INLINE Bytes Min(Bytes a, Bytes b) { return _mm_min_epu8(a, b); }
STOPNGO_INLINE Bytes Max(Bytes a, Bytes b) { return _mm_max_epu8(a, b); }
/// The last lane of a 16 in every lane; there is one 16.
template <int>
STOPNGO_INLINE Bytes LastLane(Bytes v) {
  return _mm_shuffle_epi8(v, _mm_set1_epi8(15));
}
/// Every lane moves N places up in its 16, the last N of Fill come in.
template <int N>
STOPNGO_INLINE Bytes MoveUp(Bytes v, Bytes Fill) {
  return _mm_alignr_epi8(v, Fill, (16 - N) % 16);
}

#endif

}  // namespace v128

#if !defined(__aarch64__)
STOPNGO_TARGET_END
#endif

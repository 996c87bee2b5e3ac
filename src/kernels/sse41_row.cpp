// sse41_row.cpp: marking and exchanging rows with SSE4.1, 16 bytes at a time.
#include <cstddef>
#include <cstdint>

#include "forms.h"
#include "v128.h"

STOPNGO_TARGET_BEGIN("sse4.1")
namespace sse41 {
namespace {

using v128::Bytes;
using v128::kBytes;
using v128::Load;
using v128::Store;

STOPNGO_INLINE Bytes Xor(Bytes a, Bytes b) { return _mm_xor_si128(a, b); }

#include "row.inc"

}  // namespace

void MarkRows(data_08* Image, const DATA_08* Mark, DATA_32 Height, DATA_32 Width, DATA_32 EndX) {
  for (; Height > 0; --Height, Image += EndX, Mark += Width) {
    if (!MarkVectors(Image, Mark, Width)) generic::MarkRows(Image, Mark, 1, Width, EndX);
  }
}

void ExchangeRows(data_08* LineA, data_08* LineB, data_08* Buffer, DATA_32 Width) {
  if (!ExchangeVectors(LineA, LineB, Width)) generic::ExchangeRows(LineA, LineB, Buffer, Width);
}

}  // namespace sse41
STOPNGO_TARGET_END

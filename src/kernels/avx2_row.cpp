// avx2_row.cpp: marking and exchanging rows with AVX2, 32 bytes at a time.
#include <cstddef>
#include <cstdint>

#include "forms.h"
#include "v256.h"

STOPNGO_TARGET_BEGIN("avx2")
namespace avx2 {
namespace {

using namespace v256;

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

}  // namespace avx2
STOPNGO_TARGET_END

// forms.h: the forms of the kernels, a namespace for each instruction set; kernels.h has the contracts.
#pragma once

#include "kernels.h"

namespace generic {
BlockMatch MatchBlocks;
Histogram SumDirections;
Conversion Convert;
Scoring Score;
Resampling Resample;
InPlaceFilter MedianInPlace;
InPlaceFilter GaussianInPlace;
SeparateFilter MedianSeparate;
RowMarking MarkRows;
RowExchange ExchangeRows;
}  // namespace generic

#if defined(__x86_64__)
namespace sse41 {
BlockMatch MatchBlocks;
Histogram SumDirections;
Conversion Convert;
Scoring Score;
Resampling Resample;
InPlaceFilter MedianInPlace;
InPlaceFilter GaussianInPlace;
SeparateFilter MedianSeparate;
RowMarking MarkRows;
RowExchange ExchangeRows;
}  // namespace sse41

namespace avx2 {
BlockMatch MatchBlocks;
Histogram SumDirections;
Conversion Convert;
Scoring Score;
Resampling Resample;
InPlaceFilter MedianInPlace;
InPlaceFilter GaussianInPlace;
SeparateFilter MedianSeparate;
RowMarking MarkRows;
RowExchange ExchangeRows;
}  // namespace avx2

namespace avx512vnni {
BlockMatch MatchBlocks;
}  // namespace avx512vnni
#elif defined(__aarch64__)
namespace neon {
BlockMatch MatchBlocks;
Histogram SumDirections;
Conversion Convert;
Scoring Score;
Resampling Resample;
InPlaceFilter MedianInPlace;
InPlaceFilter GaussianInPlace;
SeparateFilter MedianSeparate;
RowMarking MarkRows;
RowExchange ExchangeRows;
}  // namespace neon

namespace neon_dotprod {
BlockMatch MatchBlocks;
}  // namespace neon_dotprod
#endif

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
RowMarking MarkRow;
RowExchange ExchangeRows;
}  // namespace generic

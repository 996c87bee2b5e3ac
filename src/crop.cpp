// crop.cpp: nearest-neighbour copies by fixed patterns.
#include "crop.h"

#include "kernels/kernels.h"
#include "saturate.h"

std::uint64_t SamplingExtent(const Sampling& Source, DATA_32 CropY, DATA_32 CropX, DATA_32 RowLength) {
  if (Source.Rows == nullptr || CropY == 0 || CropX == 0) return 0;
  const std::uint64_t LastRow = Source.Top + Source.Rows->At(CropY - 1);
  const std::uint64_t LastColumn = Source.Left + Source.Columns->At(CropX - 1);
  return SaturatingAdd(SaturatingMultiply(LastRow, RowLength), LastColumn + 1);
}

void ResampleFlipped(const data_08* Input, const Sampling& Source, INTEGER Flip, DATA_32 EndY, DATA_32 EndX,
                     data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  if (CropY == 0 || CropX == 0) return;
  const auto RowLength = static_cast<std::ptrdiff_t>(EndX);
  const std::ptrdiff_t FirstRow =
      Flip < 0 ? std::ptrdiff_t{EndY} - 1 - std::ptrdiff_t{Source.Top} : std::ptrdiff_t{Source.Top};
  Kernels().Resample(Input + FirstRow * RowLength + Source.Left, Flip < 0 ? -RowLength : RowLength,
                     *Source.Rows, *Source.Columns, Output, CropY, CropX);
}

// crop_original.cpp: the region of interest of a 1920 × 1080 or 1280 × 720 frame.
#include "crop.h"
#include "kernels/kernels.h"
#include "vel_stopngo.h"

namespace {

/// One way to sample a full-resolution frame. The margins centre the area inside the one that Ratio 0
/// samples: margin units × (output side / group), half of it on each side, is what this area is smaller by.
struct OriginalRatio {
  Pattern Rows;
  Pattern Columns;
  DATA_32 MarginY, MarginX;
};

/// A frame size: its scale against the 800 × 480 working frame, as fractions, and its ways of sampling.
struct OriginalFrame {
  DATA_32 NumeratorY, DenominatorY;
  DATA_32 NumeratorX, DenominatorX;
  DATA_32 GroupY, GroupX;  ///< what the margins are counted in: output pixels a unit
  OriginalRatio Ratio[9];  ///< indexed by Ratio; without a pattern where Output is 0
};

constexpr OriginalFrame k1920 = {
    .NumeratorY = 225,
    .DenominatorY = 100,
    .NumeratorX = 24,
    .DenominatorX = 10,
    .GroupY = 4,
    .GroupX = 4,
    .Ratio =
        {
            {{9, 4, {0, 2, 4, 6}}, {5, 2, {0, 2}}, 0, 0},
            {},
            {{21, 12, {0, 2, 4, 6, 8, 10, 12, 14, 15, 17, 19, 21}}, {2, 1, {0}}, 2, 2},
            {},
            {{15, 12, {0, 2, 4, 4, 6, 8, 10, 10, 11, 13, 15, 15}}, {3, 2, {0, 2}}, 4, 4},
            {},
            {{6, 6, {0, 2, 2, 4, 5, 5}}, {1, 1, {0}}, 5, 6},
            {},
            {{3, 6, {0, 0, 2, 2, 3, 3}}, {2, 4, {0, 0, 0, 0}}, 7, 8},
        },
};

constexpr OriginalFrame k1280 = {
    .NumeratorY = 15,
    .DenominatorY = 10,
    .NumeratorX = 16,
    .DenominatorX = 10,
    .GroupY = 6,
    .GroupX = 10,
    .Ratio =
        {
            {{9, 6, {0, 2, 3, 4, 6, 7}}, {16, 10, {0, 2, 4, 6, 8, 9, 10, 12, 14, 15}}, 0, 0},
            {},
            {{7, 6, {0, 1, 2, 4, 5, 6}}, {14, 10, {0, 2, 4, 6, 7, 8, 9, 10, 12, 13}}, 2, 2},
            {},
            {{5, 6, {0, 1, 2, 3, 4, 4}}, {1, 1, {0}}, 4, 6},
            {},
            {{1, 2, {0, 0}}, {6, 10, {0, 0, 1, 1, 2, 3, 4, 4, 5, 5}}, 6, 10},
            {},
            {{1, 3, {0, 0, 0}}, {3, 10, {0, 0, 0, 1, 1, 1, 2, 2, 2, 2}}, 7, 13},
        },
};

}  // namespace

Sampling OriginalCroppingSource(DATA_32 original_width, const DATA_32* Source_L, DATA_32 CropY, DATA_32 CropX,
                                DATA_32 Ratio) {
  const OriginalFrame& Frame = original_width == 1920 ? k1920 : k1280;
  if (Ratio >= sizeof Frame.Ratio / sizeof Frame.Ratio[0]) return {};
  const OriginalRatio& Selected = Frame.Ratio[Ratio];
  if (Selected.Rows.Output == 0) return {};
  const DATA_32 SourceY = Source_L[0] * Frame.NumeratorY / Frame.DenominatorY;
  const DATA_32 SourceX = Source_L[1] * Frame.NumeratorX / Frame.DenominatorX;
  return {
      .Rows = &Selected.Rows,
      .Columns = &Selected.Columns,
      .Top = SourceY + Selected.MarginY * (CropY / Frame.GroupY) / 2,
      .Left = SourceX + Selected.MarginX * (CropX / Frame.GroupX) / 2,
  };
}

extern "C" void Image_Original_Cropping_(DATA_32 original_width, DATA_32 original_height,
                                         const DATA_08* Input, data_08* Output, const DATA_32* Source_L,
                                         const DATA_32* Location, DATA_32 Ratio, INTEGER Flip,
                                         DATA_32 /*EndY*/, DATA_32 EndX) {
  if (Input == nullptr || Output == nullptr || Source_L == nullptr || Location == nullptr) return;
  const DATA_32 CropY = Location[2] - Location[0];
  const DATA_32 CropX = Location[3] - Location[1];
  const Sampling Source = OriginalCroppingSource(original_width, Source_L, CropY, CropX, Ratio);
  if (Source.Rows == nullptr || CropY == 0 || CropX == 0) return;
  // The first pixel is found with the frame's width, the rows from there on with the row distance.
  const std::ptrdiff_t FirstRow = Flip < 0 ? std::ptrdiff_t{original_height} - 1 - std::ptrdiff_t{Source.Top}
                                           : std::ptrdiff_t{Source.Top};
  const auto RowLength = static_cast<std::ptrdiff_t>(EndX);
  Kernels().Resample(Input + FirstRow * static_cast<std::ptrdiff_t>(original_width) + Source.Left,
                     Flip < 0 ? -RowLength : RowLength, *Source.Rows, *Source.Columns, Output, CropY, CropX);
}

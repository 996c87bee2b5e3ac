// generic.cpp: the plain forms of the kernels, which define the results.
#include <cstddef>
#include <cstring>
#include <utility>

#include "activation.h"
#include "forms.h"
#include "fused.h"
#include "vel_stopngo.h"

namespace generic {
namespace {

// ---- Block matching ----

data_32 Square(DATA_08 Old, DATA_08 New) {
  const data_32 Temporary = data_32{New} - data_32{Old};
  return Temporary * Temporary;
}

/// The matching error where rows of the patch overlap: the sum of the next row is this one's without its first
/// EndX pixels and with those behind it. A large block over short rows, each pixel of which is in hundreds of
/// its rows, costs no more than its pixels then.
data_32 OverlappingSquareSum(const DATA_08* Old, const DATA_08* New, std::size_t Columns, DATA_32 BlockSize,
                             DATA_32 EndX) {
  data_32 RowSum = 0;
  for (std::size_t Column = 0; Column < Columns; ++Column) RowSum += Square(Old[Column], New[Column]);
  data_32 ErrorSum = RowSum;
  for (DATA_32 Row = 1; Row < BlockSize; ++Row, Old += EndX, New += EndX) {
    for (std::size_t k = 0; k < EndX; ++k) {
      RowSum += Square(Old[Columns + k], New[Columns + k]) - Square(Old[k], New[k]);
    }
    ErrorSum += RowSum;
  }
  return ErrorSum;
}

/// The matching error: the sum of squared differences over BlockSize rows of whole runs of 8 pixels. Runs
/// may pass the right edge: positions are linear offsets.
data_32 _Block_Error_Square_Sum_(const DATA_08* BlockOld, const DATA_08* BlockNew, DATA_32 BlockSize,
                                 DATA_32 EndX) {
  const std::size_t Columns = (std::size_t{BlockSize} + 7) / 8 * 8;
  if (EndX < BlockSize) return OverlappingSquareSum(BlockOld, BlockNew, Columns, BlockSize, EndX);
  data_32 ErrorSum = 0;
  for (DATA_32 Row = 0; Row < BlockSize; ++Row) {
    for (std::size_t Column = 0; Column < Columns; ++Column) {
      ErrorSum += Square(BlockOld[Column], BlockNew[Column]);
    }
    BlockOld += EndX;
    BlockNew += EndX;
  }
  return ErrorSum;
}

/// The neighbours of a step's centre in the order in which they are tried: among equal errors the earlier
/// one wins, and the centre before all.
struct Neighbour {
  inte_08 Y, X;
};
constexpr Neighbour kNeighbours[] = {{-1, -1}, {-1, 0}, {-1, 1}, {0, -1}, {0, 1}, {1, -1}, {1, 0}, {1, 1}};

/// One step of the search around StartOld. Lowers *ErrorSumMin, moves the vector against the displacement
/// in the old image, and returns the best position.
const DATA_08* _Block_Search_(const DATA_08* StartOld, const DATA_08* StartNew, data_32* ErrorSumMin,
                              inte_08* Motion, DATA_32 StepSize, DATA_32 BlockSize, DATA_32 EndX) {
  const auto s = static_cast<std::ptrdiff_t>(StepSize);
  const std::ptrdiff_t Step = static_cast<std::ptrdiff_t>(EndX) * s;
  const DATA_08* BlockPointer = StartOld;
  Neighbour Check = {0, 0};
  for (const Neighbour Candidate : kNeighbours) {
    const DATA_08* Position = StartOld + Candidate.Y * Step + Candidate.X * s;
    const data_32 Temporary = _Block_Error_Square_Sum_(Position, StartNew, BlockSize, EndX) - *ErrorSumMin;
    // The sign decides: exact while sums stay below 2^31, and as defined beyond.
    if (static_cast<inte_32>(Temporary) < 0) {
      *ErrorSumMin += Temporary;
      BlockPointer = Position;
      Check = Candidate;
    }
  }
  Motion[0] = static_cast<inte_08>(Motion[0] - Check.Y * s);
  Motion[1] = static_cast<inte_08>(Motion[1] - Check.X * s);
  return BlockPointer;
}

}  // namespace

void MatchBlocks(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  const std::size_t BlockStep = std::size_t{BlockSize} * EndX;
  std::size_t Offset = BlockSize + BlockStep;
  for (DATA_32 Row = 0; Row < NumY; ++Row) {
    const DATA_08* OldStarter = ImageOld + Offset;
    const DATA_08* NewStarter = ImageNew + Offset;
    for (DATA_32 Column = 0; Column < NumX; ++Column) {
      MotionVector[0] = 0;
      MotionVector[1] = 0;
      data_32 Sum = _Block_Error_Square_Sum_(OldStarter, NewStarter, BlockSize, EndX);
      const DATA_08* OldPointer = OldStarter;
      for (const DATA_32 StepSize : {4U, 2U, 1U}) {
        OldPointer = _Block_Search_(OldPointer, NewStarter, &Sum, MotionVector, StepSize, BlockSize, EndX);
      }
      OldStarter += BlockSize;
      NewStarter += BlockSize;
      MotionVector += 2;
    }
    Offset += BlockStep;
  }
}

// ---- Histogram and perceptron ----

namespace {

/// Adds a positive component to Positive and the magnitude of a negative one to Negative.
void SplitSign(INTE_08 Component, inte_08& Positive, inte_08& Negative) {
  const int Mask = Component >> 7;
  Positive = static_cast<inte_08>(Positive + (Component & ~Mask));
  Negative = static_cast<inte_08>(Negative - (Component & Mask));
}

}  // namespace

void SumDirections(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX) {
  constexpr int kBlockRows = 3;
  constexpr int kBlockColumns = 4;
  const std::size_t Step = std::size_t{NumX} * 4;
  std::memset(Chunk, 0, Step * NumY);
  for (DATA_32 CellRow = 0; CellRow < NumY; ++CellRow) {
    for (int BlockRow = 0; BlockRow < kBlockRows; ++BlockRow) {
      for (std::size_t Cell = 0; Cell < Step; Cell += 4) {
        for (int Block = 0; Block < kBlockColumns; ++Block, Vector += 2) {
          SplitSign(Vector[0], Chunk[Cell + 0], Chunk[Cell + 2]);
          SplitSign(Vector[1], Chunk[Cell + 1], Chunk[Cell + 3]);
        }
      }
    }
    Chunk += Step;
  }
}

void Convert(const INTE_08* Input, real_32* Output, DATA_32 Length) {
  for (DATA_32 k = 0; k < Length; ++k) Output[k] = static_cast<real_32>(Input[k]) * 0.0078125F;
}

real_32 Score(const REAL_32* Feature, const REAL_32* Weight, DATA_32 Inputs, DATA_32 Hiddens) {
  const REAL_32* WeightIHBias = Weight + std::size_t{Inputs} * Hiddens;
  const REAL_32* WeightHO = WeightIHBias + Hiddens;
  real_32 Output = WeightHO[Hiddens];
  for (DATA_32 Index = 0; Index < Hiddens; ++Index) {
    real_32 Node = WeightIHBias[Index];
    for (DATA_32 i = 0; i < Inputs; ++i) Node += Feature[i] * Weight[i];
    Weight += Inputs;
    Output = FusedMultiplyAdd(WeightHO[Index], Activate(Node), Output);
  }
  return Activate(Output);
}

// ---- Resampling and marking ----

namespace {

/// One source row through Columns.
void ResampleRow(const DATA_08* Input, data_08* Output, DATA_32 CropX, const Pattern& Columns) {
  if (Columns.Source == 1 && Columns.Output == 1) {
    std::memmove(Output, Input, CropX);
    return;
  }
  DATA_32 Column = 0;
  while (Column < CropX) {
    const DATA_32 Group = CropX - Column < Columns.Output ? CropX - Column : Columns.Output;
    for (DATA_32 k = 0; k < Group; ++k) Output[Column + k] = Input[Columns.Offset[k]];
    Column += Group;
    Input += Columns.Source;
  }
}

}  // namespace

void Resample(const DATA_08* Input, std::ptrdiff_t RowStep, const Pattern& Rows, const Pattern& Columns,
              data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  for (DATA_32 Row = 0; Row < CropY; ++Row, Output += CropX) {
    const bool Again = Row > 0 && Rows.At(Row) == Rows.At(Row - 1);
    if (Again) {
      std::memcpy(Output, Output - CropX, CropX);
    } else {
      ResampleRow(Input + static_cast<std::ptrdiff_t>(Rows.At(Row)) * RowStep, Output, CropX, Columns);
    }
  }
}

void MarkRows(data_08* Image, const DATA_08* Mark, DATA_32 Height, DATA_32 Width, DATA_32 EndX) {
  for (; Height > 0; --Height, Image += EndX, Mark += Width) {
    for (DATA_32 i = 0; i < Width; ++i) Image[i] = static_cast<data_08>(Image[i] ^ Mark[i]);
  }
}

void ExchangeRows(data_08* LineA, data_08* LineB, data_08* Buffer, DATA_32 Width) {
  std::memcpy(Buffer, LineA, Width);
  std::memcpy(LineA, LineB, Width);
  std::memcpy(LineB, Buffer, Width);
}

// ---- Filters ----

namespace {

/// The nine pixels around Centre, row by row.
void GatherWindow(const DATA_08* Centre, std::size_t Width, data_08 (&pixels)[9]) {
  std::memcpy(pixels + 0, Centre - Width - 1, 3);
  std::memcpy(pixels + 3, Centre - 1, 3);
  std::memcpy(pixels + 6, Centre + Width - 1, 3);
}

}  // namespace

void MedianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  data_08 pixels[9];
  for (DATA_32 y = Border; y < Height - Border; ++y) {
    data_08* Row = Image + std::size_t{y} * Width;
    for (DATA_32 x = Border; x < Width - Border; ++x) {
      GatherWindow(Row + x, Width, pixels);
      pixel_qsort(pixels, 9);
      Row[x] = pixels[4];
    }
  }
}

namespace {

constexpr data_32 gaussianMask[5][5] = {
    {2, 4, 5, 4, 2}, {4, 9, 12, 9, 4}, {5, 12, 15, 12, 5}, {4, 9, 12, 9, 4}, {2, 4, 5, 4, 2}};

}  // namespace

void GaussianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  for (DATA_32 row = Border; row < Height - Border; ++row) {
    for (DATA_32 col = Border; col < Width - Border; ++col) {
      data_32 sum = 0;
      for (DATA_32 y = 0; y < 5; ++y) {
        const DATA_08* Line = Image + std::size_t{row - 2 + y} * Width + (col - 2);
        for (DATA_32 x = 0; x < 5; ++x) sum += gaussianMask[y][x] * Line[x];
      }
      // The weights total 159: the weighted mean, rounded down to a multiple of 10.
      Image[std::size_t{row} * Width + col] = static_cast<data_08>(sum / 1590 * 10);
    }
  }
}

namespace {

/// A quicksort without recursion; the shorter side of a partition is worked first, which keeps the stacks
/// far from their ends.
int quick_sort(data_08* arr, int elements) {
  int beg[300];
  int end[300];
  int i = 0;
  beg[0] = 0;
  end[0] = elements;
  while (i >= 0) {
    int L = beg[i];
    int R = end[i] - 1;
    if (L >= R) {
      --i;
      continue;
    }
    const data_08 piv = arr[L];
    while (L < R) {
      while (arr[R] >= piv && L < R) --R;
      if (L < R) arr[L++] = arr[R];
      while (arr[L] <= piv && L < R) ++L;
      if (L < R) arr[R--] = arr[L];
    }
    arr[L] = piv;
    beg[i + 1] = L + 1;
    end[i + 1] = end[i];
    end[i] = L;
    ++i;
    if (end[i] - beg[i] > end[i - 1] - beg[i - 1]) {
      std::swap(beg[i], beg[i - 1]);
      std::swap(end[i], end[i - 1]);
    }
  }
  return 0;
}

}  // namespace

void MedianSeparate(const DATA_08* image, int rows, int cols, data_08* filteredimage) {
  const auto Width = static_cast<std::size_t>(cols);
  data_08 pixel_values[9];
  for (int r = 1; r < rows - 1; ++r) {
    for (int c = 1; c < cols - 1; ++c) {
      const std::size_t Centre = static_cast<std::size_t>(r) * Width + static_cast<std::size_t>(c);
      GatherWindow(image + Centre, Width, pixel_values);
      quick_sort(pixel_values, 9);
      filteredimage[Centre] = pixel_values[4];
    }
  }
}

}  // namespace generic

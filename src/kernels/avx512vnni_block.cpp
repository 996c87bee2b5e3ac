// avx512vnni_block.cpp: block matching with byte dot products.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "block_step.h"
#include "forms.h"
#include "v256.h"

STOPNGO_TARGET_BEGIN("avx2,avx512f,avx512bw,avx512vl,avx512vnni")

// For pixels o of the old patch and n of the new one the error is
//   sum (o - n)^2  =  sum o^2  -  2 sum n (o - 128)  +  sum (n^2 - 256 n),
// and the last sum is the same for every candidate of a block: it decides nothing and is left out. The
// middle one is a dot product of unsigned with signed bytes, four to an instruction and lane, and the first
// one can be shared by all blocks, as running sums down the columns.
//
// Keys can be negative for that; their order is the same, and at most 16 × 16 pixels keep them below 2^30.
//
// The previous image is prepared for a few blocks of one column of the grid at a time, with its reach of 7
// pixels around, and the preparation moves down with the grid.

namespace avx512vnni {
namespace {

using block_step::Progress;
using v256::Least;
using v256::Load;
using v256::Store;
using v256::Total;
using v256::Totals;
using v256::Widen;

/// Pixels of a patch's row, for block sizes from 9 to 16.
constexpr int kPatch = 16;
/// Positions of a candidate along an axis, from -7 to 7.
constexpr int kPositions = 2 * kSearchReach + 1;
/// What a tile may take of the stack: room for ten blocks of 10 pixels, a tenth faster than four. With the
/// weights and the rest the stack of a frame stays below the 16 KiB that the build allows.
constexpr int kTileBytes = 12800;
constexpr int kTileBlocks = 10;
constexpr int kWeightBytes = 1600;

/// Two rows, pixel by pixel in turns.
__m256i Interleave(__m128i Upper, __m128i Lower) {
  return v256::Join(_mm_unpacklo_epi8(Upper, Lower), _mm_unpackhi_epi8(Upper, Lower));
}

/// The sizes that follow from the block size and the blocks in a tile.
struct Shape {
  int BlockSize;
  int Blocks;
  int Columns;   ///< of the tile, reach included
  int RowPairs;  ///< of a patch; the last one is half empty when the block size is odd

  constexpr Shape(int Size, int Count)
      : BlockSize(Size),
        Blocks(Count),
        Columns((Count - 1) * Size + kPatch + 2 * kSearchReach),
        RowPairs((Size + 1) / 2) {}

  constexpr int Rows() const { return BlockSize + 2 * kSearchReach; }
  constexpr int PairRows() const { return kPositions + 2 * (RowPairs - 1); }
  constexpr int PairStride() const { return 2 * Columns; }
  constexpr int SquareHalf() const { return Columns / 2; }
  constexpr int SquareStride() const { return 2 * SquareHalf(); }
  constexpr int Bytes() const { return PairRows() * PairStride() + kPositions * SquareStride() * 4; }
};

/// The most blocks of a size that a tile takes.
constexpr int LargestTile(int Size) {
  int Count = kTileBlocks;
  while (Shape(Size, Count).Bytes() > kTileBytes) --Count;
  return Count;
}

consteval bool WeightsFit() {
  constexpr int kRowPairWeights = 32;  // bytes, of one block
  for (int Size = 9; Size <= kPatch; ++Size) {
    if (LargestTile(Size) * Shape(Size, 1).RowPairs * kRowPairWeights > kWeightBytes) return false;
  }
  return true;
}
static_assert(WeightsFit());

struct Tile {
  explicit Tile(const Shape& s) : Size(s) {}

  Shape Size;
  alignas(32) inte_32 Bytes[kTileBytes / 4];
  alignas(32) data_08 Weights[kWeightBytes];
  Progress Blocks[kTileBlocks];

  /// Pixels less 128 of a row and of the row below it by turns.
  inte_08* Pairs() { return reinterpret_cast<inte_08*>(Bytes + kPositions * Size.SquareStride()); }
  /// Sums of squares of two neighbouring columns over the rows of a block: for each row first those of the
  /// columns from an even one on, then those from an odd one on.
  inte_32* Squares() { return Bytes; }
};

/// Rows of pairs from First on. The last one is a row short when the block size is odd; what stands there
/// instead of it meets weights of 0.
void PairUp(Tile& T, const DATA_08* Corner, std::size_t EndX, int First) {
  constexpr int kExclusiveOr = 0x96;
  const __m256i Bias = _mm256_set1_epi8(-128);
  const int Columns = T.Size.Columns;
  const int Complete = std::min(T.Size.PairRows(), T.Size.Rows() - 1);
  const std::ptrdiff_t Stride = T.Size.PairStride();
  for (int c = 0; c < Columns; c += 16) {
    const int Column = std::min(c, Columns - 16);
    const DATA_08* In = Corner + First * EndX + Column;
    inte_08* Out = T.Pairs() + First * Stride + 2 * Column;
    __m256i Row = Widen(In);
#pragma GCC unroll 2
    for (int r = First; r < Complete; ++r, Out += Stride) {
      In += EndX;
      const __m256i Below = Widen(In);
      Store(Out, _mm256_ternarylogic_epi32(Row, _mm256_slli_epi16(Below, 8), Bias, kExclusiveOr));
      Row = Below;
    }
    if (Complete < T.Size.PairRows()) Store(Out, _mm256_xor_si256(Row, Bias));
  }
}

/// A step down of eight sums: the row that enters less the row that leaves, a^2 - b^2 = (a - b)(a + b).
__m256i StepDown(__m256i Sum, const DATA_08* Leaves, const DATA_08* Enters) {
  const __m256i a = Widen(Enters);
  const __m256i b = Widen(Leaves);
  return _mm256_dpwssd_epi32(Sum, _mm256_sub_epi16(a, b), _mm256_add_epi16(a, b));
}

/// The sums of the first position.
__m256i SumColumns(const DATA_08* In, std::size_t EndX, int BlockSize) {
  __m256i Sum = _mm256_setzero_si256();
  for (int r = 0; r < BlockSize; ++r, In += EndX) {
    const __m256i a = Widen(In);
    Sum = _mm256_dpwssd_epi32(Sum, a, a);
  }
  return Sum;
}

/// Rows of squares from First on; row 0 from nothing, any other one from the row before it.
void SumSquares(Tile& T, const DATA_08* Corner, std::size_t EndX, int First) {
  const int Entries[2] = {T.Size.Columns / 2, (T.Size.Columns - 1) / 2};
  const std::ptrdiff_t Stride = T.Size.SquareStride();
  const std::size_t Enters = T.Size.BlockSize * EndX;
  for (int e = 0; e < Entries[0]; e += 8) {
    const int Even = std::min(e, Entries[0] - 8);
    const int Odd = std::min(e, Entries[1] - 8);
    const DATA_08* InEven = Corner + 2 * Even;
    const DATA_08* InOdd = Corner + 2 * Odd + 1;
    inte_32* OutEven = T.Squares() + Even;
    inte_32* OutOdd = T.Squares() + T.Size.SquareHalf() + Odd;
    if (First == 0) {
      Store(OutEven, SumColumns(InEven, EndX, T.Size.BlockSize));
      Store(OutOdd, SumColumns(InOdd, EndX, T.Size.BlockSize));
    }
    const int Start = std::max(First, 1);
    __m256i SumEven = Load(OutEven + (Start - 1) * Stride);
    __m256i SumOdd = Load(OutOdd + (Start - 1) * Stride);
    std::size_t In = (Start - 1) * EndX;
    std::ptrdiff_t Out = Start * Stride;
#pragma GCC unroll 2
    for (int Row = Start; Row < kPositions; ++Row, In += EndX, Out += Stride) {
      SumEven = StepDown(SumEven, InEven + In, InEven + In + Enters);
      SumOdd = StepDown(SumOdd, InOdd + In, InOdd + In + Enters);
      Store(OutEven + Out, SumEven);
      Store(OutOdd + Out, SumOdd);
    }
  }
}

/// The tile for a row of blocks; Again: it holds the row of blocks above.
void Prepare(Tile& T, const DATA_08* Corner, std::size_t EndX, bool Again) {
  const int Size = T.Size.BlockSize;
  // With an odd block size the last row of pairs has no row below it and is made again.
  const int Pairs = Again ? T.Size.PairRows() - Size - Size % 2 : 0;
  const int Squares = Again ? std::max(kPositions - Size, 0) : 0;
  std::memmove(T.Pairs(), T.Pairs() + Size * T.Size.PairStride(), Pairs * T.Size.PairStride());
  std::memmove(T.Squares(), T.Squares() + Size * T.Size.SquareStride(), Squares * T.Size.SquareStride() * 4);
  PairUp(T, Corner, EndX, Pairs);
  SumSquares(T, Corner, EndX, Squares);
}

/// The new patch in the layout of the pairs. The row below an odd last row is not read and weighs nothing.
void PairWeights(data_08* Out, const DATA_08* New, std::size_t EndX, int BlockSize) {
  for (int r = 0; r < BlockSize; r += 2, Out += 32) {
    const __m128i Upper = v128::Load(New + r * EndX);
    const __m128i Lower = r + 1 < BlockSize ? v128::Load(New + (r + 1) * EndX) : _mm_setzero_si128();
    Store(Out, Interleave(Upper, Lower));
  }
}

/// Where the sums of squares of a patch at column x start.
[[gnu::always_inline]] inline const inte_32* Window(const inte_32* Row, int x, int Half) {
  return Row + (x & 1) * Half + (x >> 1);
}

[[gnu::always_inline]] inline __m256i Finish(__m256i Dot, const inte_32* Squares) {
  return _mm256_sub_epi32(_mm256_add_epi32(Dot, Dot), Load(Squares));
}

template <int RowPairs, int Step>
inte_32 LeastNeighbour(Tile& T, const data_08* Weights, int y, int x) {
  const std::ptrdiff_t Stride = T.Size.PairStride();
  const inte_08* Middle = T.Pairs() + y * Stride + 2 * x;
  const inte_08* Above = Middle - Step * Stride;
  const inte_08* Below = Middle + Step * Stride;
  __m256i S[8] = {};
#pragma GCC unroll 8
  for (int k = 0; k < RowPairs; ++k) {
    const __m256i n = Load(Weights + 32 * k);
    S[0] = _mm256_dpbusd_epi32(S[0], n, Load(Above - 2 * Step));
    S[1] = _mm256_dpbusd_epi32(S[1], n, Load(Above));
    S[2] = _mm256_dpbusd_epi32(S[2], n, Load(Above + 2 * Step));
    S[3] = _mm256_dpbusd_epi32(S[3], n, Load(Middle - 2 * Step));
    S[4] = _mm256_dpbusd_epi32(S[4], n, Load(Middle + 2 * Step));
    S[5] = _mm256_dpbusd_epi32(S[5], n, Load(Below - 2 * Step));
    S[6] = _mm256_dpbusd_epi32(S[6], n, Load(Below));
    S[7] = _mm256_dpbusd_epi32(S[7], n, Load(Below + 2 * Step));
    Above += 2 * Stride;
    Middle += 2 * Stride;
    Below += 2 * Stride;
  }
  const int Half = T.Size.SquareHalf();
  const std::ptrdiff_t Down = std::ptrdiff_t{Step} * T.Size.SquareStride();
  const inte_32* Row = T.Squares() + y * T.Size.SquareStride();
  const inte_32* Left = Window(Row, x - Step, Half);
  const inte_32* Centre = Window(Row, x, Half);
  const inte_32* Right = Window(Row, x + Step, Half);
  S[0] = Finish(S[0], Left - Down);
  S[1] = Finish(S[1], Centre - Down);
  S[2] = Finish(S[2], Right - Down);
  S[3] = Finish(S[3], Left);
  S[4] = Finish(S[4], Right);
  S[5] = Finish(S[5], Left + Down);
  S[6] = Finish(S[6], Centre + Down);
  S[7] = Finish(S[7], Right + Down);
  const __m256i Places = _mm256_setr_epi32(1, 2, 3, 4, 5, 6, 7, 8);
  return Least(_mm256_sub_epi32(Places, _mm256_slli_epi32(Totals(S), block_step::kPlaceBits)));
}

template <int RowPairs, int Step>
void Search(Tile& T) {
  for (int b = 0; b < T.Size.Blocks; ++b) {
    Progress& Block = T.Blocks[b];
    const data_08* Weights = T.Weights + b * RowPairs * 32;
    const inte_32 Neighbour = LeastNeighbour<RowPairs, Step>(T, Weights, Block.Y + kSearchReach,
                                                             Block.X + kSearchReach + b * T.Size.BlockSize);
    Block.Move(std::min(Neighbour, Block.Key), Step);
  }
}

template <int RowPairs>
inte_32 CentreKey(Tile& T, const data_08* Weights, int x) {
  const inte_08* Old = T.Pairs() + kSearchReach * T.Size.PairStride() + 2 * x;
  __m256i Dot = _mm256_setzero_si256();
#pragma GCC unroll 8
  for (int k = 0; k < RowPairs; ++k, Old += 2 * T.Size.PairStride()) {
    Dot = _mm256_dpbusd_epi32(Dot, Load(Weights + 32 * k), Load(Old));
  }
  const inte_32* Row = T.Squares() + kSearchReach * T.Size.SquareStride();
  const __m256i S = Finish(Dot, Window(Row, x, T.Size.SquareHalf()));
  return -Total(S) * (1 << block_step::kPlaceBits);
}

template <int RowPairs>
void MatchTile(Tile& T, const DATA_08* New, std::size_t EndX, inte_08* Motion) {
  const int Size = T.Size.BlockSize;
  for (int b = 0; b < T.Size.Blocks; ++b)
    PairWeights(T.Weights + b * RowPairs * 32, New + b * Size, EndX, Size);
  for (int b = 0; b < T.Size.Blocks; ++b) {
    const data_08* Weights = T.Weights + b * RowPairs * 32;
    T.Blocks[b] = {CentreKey<RowPairs>(T, Weights, kSearchReach + b * Size), 0, 0};
  }
  Search<RowPairs, 4>(T);
  Search<RowPairs, 2>(T);
  Search<RowPairs, 1>(T);
  for (int b = 0; b < T.Size.Blocks; ++b) T.Blocks[b].Store(Motion + 2 * b);
}

/// By row pairs, from 5 on.
using TileMatch = void(Tile&, const DATA_08*, std::size_t, inte_08*);
constexpr TileMatch* kTileMatches[] = {MatchTile<5>, MatchTile<6>, MatchTile<7>, MatchTile<8>};

}  // namespace

void MatchBlocks(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (BlockSize < 9 || BlockSize > 16) {
    avx2::MatchBlocks(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
    return;
  }
  const int Size = static_cast<int>(BlockSize);
  const int Fit = LargestTile(Size);
  Tile T(Shape(Size, Fit));
  TileMatch* const Match = kTileMatches[T.Size.RowPairs - 5];
  for (DATA_32 x = 0; x < NumX; x += Fit) {
    T.Size = Shape(Size, static_cast<int>(std::min<DATA_32>(Fit, NumX - x)));
    std::size_t Offset = std::size_t{BlockSize} * EndX + std::size_t{BlockSize} * (x + 1);
    inte_08* Motion = MotionVector + 2 * std::size_t{x};
    for (DATA_32 y = 0; y < NumY; ++y) {
      Prepare(T, ImageOld + Offset - kSearchReach * std::size_t{EndX} - kSearchReach, EndX, y > 0);
      Match(T, ImageNew + Offset, EndX, Motion);
      Offset += std::size_t{BlockSize} * EndX;
      Motion += 2 * std::size_t{NumX};
    }
  }
}

}  // namespace avx512vnni

STOPNGO_TARGET_END

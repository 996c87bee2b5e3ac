// block_text.h: the motion search and the histogram, for whatever vectors are in scope.
//
// Not a header of its own: the file of an instruction set includes it once, amid its namespace and target,
// after these are known there:
//     Lanes                        a vector
//     kStrip                       pixels of a row that a vector holds as words, 8 or 16
//     Widen<Pixels>(Row)           kStrip pixels as words, or eight and zeros, which add nothing to an error
//     Add<Pixels>(Sum, New, Old)   adds the squared differences of widened New and of pixels, in four bytes
//     Total(Sum)                   of the lanes
//     LeastKey(Sums)               of the eight neighbours
//     kCells, SumCells(Vectors, RowStep, Chunk)   that many cells of a row of the histogram

using block_step::Progress;

/// Blocks that take each step together: their steps do not wait for one another, which hides the time
/// from the last pixel of a step to the first one of the next.
constexpr int kGroup = 16;

/// What a search goes by: a patch is BlockSize rows of BlockSize pixels rounded up to eight.
struct Patch {
  std::size_t BlockSize, EndX;
};

/// Adds some columns of the eight neighbours of Old, Step pixels around.
template <int Pixels, int Step>
[[gnu::always_inline]] inline void AddNeighbours(Lanes (&Sum)[8], const Patch& Size, const DATA_08* Old,
                                                 const DATA_08* New) {
  const DATA_08* Above = Old - Step * Size.EndX;
  const DATA_08* Below = Old + Step * Size.EndX;
  for (std::size_t Row = 0; Row < Size.BlockSize; ++Row) {
    const Lanes n = Widen<Pixels>(New);
    Add<Pixels>(Sum[0], n, Above - Step);
    Add<Pixels>(Sum[1], n, Above);
    Add<Pixels>(Sum[2], n, Above + Step);
    Add<Pixels>(Sum[3], n, Old - Step);
    Add<Pixels>(Sum[4], n, Old + Step);
    Add<Pixels>(Sum[5], n, Below - Step);
    Add<Pixels>(Sum[6], n, Below);
    Add<Pixels>(Sum[7], n, Below + Step);
    New += Size.EndX;
    Above += Size.EndX;
    Old += Size.EndX;
    Below += Size.EndX;
  }
}

/// The strips of a patch's row of so many pixels, one number each. Expanded and not gone through by a loop:
/// compilers would then keep the sums in memory.
template <int Columns>
using Strips = std::make_integer_sequence<int, Columns / kStrip>;

template <int Columns, int Step, int... Strip>
[[gnu::always_inline]] inline void AddPatches(Lanes (&Sum)[8], const Patch& Size, const DATA_08* Old,
                                              const DATA_08* New,
                                              std::integer_sequence<int, Strip...> /*All*/) {
  (AddNeighbours<kStrip, Step>(Sum, Size, Old + Strip * kStrip, New + Strip * kStrip), ...);
  if constexpr (Columns % kStrip != 0)
    AddNeighbours<8, Step>(Sum, Size, Old + Columns - 8, New + Columns - 8);
}

template <int Columns, int... Strip>
[[gnu::always_inline]] inline void AddRow(Lanes& Sum, const DATA_08* Old, const DATA_08* New,
                                          std::integer_sequence<int, Strip...> /*All*/) {
  (Add<kStrip>(Sum, Widen<kStrip>(New + Strip * kStrip), Old + Strip * kStrip), ...);
  if constexpr (Columns % kStrip != 0) Add<8>(Sum, Widen<8>(New + Columns - 8), Old + Columns - 8);
}

/// One step of one block. Columns: the pixels of a patch's row.
template <int Columns, int Step>
void Search(const Patch& Size, const DATA_08* Old, const DATA_08* New, Progress& Block) {
  Old += Block.Y * static_cast<std::ptrdiff_t>(Size.EndX) + Block.X;
  Lanes Sum[8] = {};
  AddPatches<Columns, Step>(Sum, Size, Old, New, Strips<Columns>());
  Block.Move(std::min(LeastKey(Sum), Block.Key), Step);
}

template <int Columns>
inte_32 CentreKey(const Patch& Size, const DATA_08* Old, const DATA_08* New) {
  Lanes Sum = {};
  for (std::size_t Row = 0; Row < Size.BlockSize; ++Row, Old += Size.EndX, New += Size.EndX)
    AddRow<Columns>(Sum, Old, New, Strips<Columns>());
  return Total(Sum) * (1 << block_step::kPlaceBits);
}

template <int Columns>
void MatchGroup(const Patch& Size, const DATA_08* Old, const DATA_08* New, int Count, inte_08* Motion) {
  Progress Blocks[kGroup];
  const std::size_t Pitch = Size.BlockSize;
  for (int b = 0; b < Count; ++b)
    Blocks[b] = {CentreKey<Columns>(Size, Old + b * Pitch, New + b * Pitch), 0, 0};
  for (int b = 0; b < Count; ++b) Search<Columns, 4>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Search<Columns, 2>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Search<Columns, 1>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Blocks[b].Store(Motion + 2 * b);
}

/// By the runs of eight pixels in a patch's row, less one.
using GroupMatch = void(const Patch&, const DATA_08*, const DATA_08*, int, inte_08*);
constexpr GroupMatch* kGroupMatches[] = {MatchGroup<8>, MatchGroup<16>, MatchGroup<24>, MatchGroup<32>};

/// Whether the call was served; if not, the blocks are too large.
bool MatchVectors(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                  DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (BlockSize == 0 || BlockSize > block_step::kLargestBlock) return false;
  const Patch Size = {BlockSize, EndX};
  GroupMatch* const Match = kGroupMatches[(BlockSize - 1) / 8];
  for (DATA_32 y = 0; y < NumY; ++y) {
    const std::size_t RowOffset = (std::size_t{y} + 1) * BlockSize * EndX;
    for (DATA_32 x = 0; x < NumX;) {
      const DATA_32 Count = std::min<DATA_32>(NumX - x, kGroup);
      const std::size_t Offset = RowOffset + (std::size_t{x} + 1) * BlockSize;
      Match(Size, ImageOld + Offset, ImageNew + Offset, static_cast<int>(Count), MotionVector);
      MotionVector += 2 * std::size_t{Count};
      x += Count;
    }
  }
  return true;
}

/// Whether the call was served; if not, rows have too few cells. The last cells of a row overlap.
bool SumVectors(const INTE_08* Vectors, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX) {
  if (NumX < kCells) return false;
  const std::size_t Last = NumX - kCells;
  const std::size_t RowStep = std::size_t{NumX} * 8;
  for (DATA_32 Row = 0; Row < NumY; ++Row, Vectors += 3 * RowStep, Chunk += std::size_t{NumX} * 4) {
    for (std::size_t Cell = 0; Cell < Last; Cell += kCells)
      SumCells(Vectors + Cell * 8, RowStep, Chunk + Cell * 4);
    SumCells(Vectors + Last * 8, RowStep, Chunk + Last * 4);
  }
  return true;
}

// neon_match_text.h: the motion search for both Arm forms, over their ways of adding squared differences.
//
// Not a header of its own: the file of an instruction set includes it once, amid its namespace and target,
// after Accumulate(Sum, Old, New) is known there for 16 and for 8 pixels, and Start(Old, New), the same from
// a sum of 0, for 16.

constexpr std::size_t kNeighbours = 8;

/// The positions of Count candidates' patches, at the rows that come next.
template <std::size_t Count>
struct Cursors {
  const DATA_08* Old[Count];
};

/// The errors of Count candidates so far, each spread over four lanes.
template <std::size_t Count>
struct Sums {
  uint32x4_t Of[Count];
};

/// Loads that move their pointer to the next row: one instruction, which compilers do not form by
/// themselves, where a row costs three to six.
template <typename Pixels>
STOPNGO_INLINE Pixels TakeRow(const DATA_08*& Row, std::ptrdiff_t Pitch) {
  Pixels Taken;
  using Bytes = const DATA_08(*)[sizeof(Pixels)];
  if constexpr (sizeof(Pixels) == 16) {
    asm volatile("ld1 {%0.16b}, [%1], %2"
                 : "=w"(Taken), "+r"(Row)
                 : "r"(Pitch), "m"(*reinterpret_cast<Bytes>(Row)));
  } else {
    asm volatile("ld1 {%0.8b}, [%1], %2"
                 : "=w"(Taken), "+r"(Row)
                 : "r"(Pitch), "m"(*reinterpret_cast<Bytes>(Row)));
  }
  return Taken;
}

/// One row of one strip, 16 or 8 pixels wide, of all candidates. Written out by expansion and not as a
/// loop: arrays that a loop goes through stay in memory.
template <typename Pixels, std::size_t Count, std::size_t... K>
STOPNGO_INLINE void AddRow(Cursors<Count>& At, Sums<Count>& Sum, std::ptrdiff_t Pitch, Pixels New,
                           std::index_sequence<K...> /*Candidates*/) {
  ((Sum.Of[K] = Accumulate(Sum.Of[K], TakeRow<Pixels>(At.Old[K], Pitch), New)), ...);
}

/// The first row, in place of sums of 0.
template <std::size_t Count, std::size_t... K>
STOPNGO_INLINE void StartRow(Cursors<Count>& At, Sums<Count>& Sum, std::ptrdiff_t Pitch, uint8x16_t New,
                             std::index_sequence<K...> /*Candidates*/) {
  ((Sum.Of[K] = Start(TakeRow<uint8x16_t>(At.Old[K], Pitch), New)), ...);
}

/// The errors of the first and of the last four neighbours.
struct Errors {
  uint32x4_t First, Last;
};

STOPNGO_INLINE Errors Total(const Sums<kNeighbours>& Sum) {
  return {vpaddq_u32(vpaddq_u32(Sum.Of[0], Sum.Of[1]), vpaddq_u32(Sum.Of[2], Sum.Of[3])),
          vpaddq_u32(vpaddq_u32(Sum.Of[4], Sum.Of[5]), vpaddq_u32(Sum.Of[6], Sum.Of[7]))};
}

/// Sums of squares only grow: what has reached the least error so far cannot win any more.
STOPNGO_INLINE bool CanWin(const Sums<kNeighbours>& Sum, inte_32 LeastKey) {
  const Errors e = Total(Sum);
  return vminvq_u32(vminq_u32(e.First, e.Last)) < static_cast<data_32>(LeastKey) >> block_step::kPlaceBits;
}

STOPNGO_INLINE bool CanWin(const Sums<1>& /*Centre*/, inte_32 /*LeastKey*/) { return true; }

// ---- Blocks of 10: patches of 10 rows and 16 columns ----

/// The block stays in registers through its whole search.
struct BlockOf10 {
  std::ptrdiff_t Pitch;
  uint8x16_t Row0, Row1, Row2, Row3, Row4, Row5, Row6, Row7, Row8, Row9;

  [[gnu::always_inline]] BlockOf10(const DATA_08* New, DATA_32 /*BlockSize*/, std::ptrdiff_t ImagePitch)
      : Pitch(ImagePitch),
        Row0(TakeRow<uint8x16_t>(New, Pitch)),
        Row1(TakeRow<uint8x16_t>(New, Pitch)),
        Row2(TakeRow<uint8x16_t>(New, Pitch)),
        Row3(TakeRow<uint8x16_t>(New, Pitch)),
        Row4(TakeRow<uint8x16_t>(New, Pitch)),
        Row5(TakeRow<uint8x16_t>(New, Pitch)),
        Row6(TakeRow<uint8x16_t>(New, Pitch)),
        Row7(TakeRow<uint8x16_t>(New, Pitch)),
        Row8(TakeRow<uint8x16_t>(New, Pitch)),
        Row9(TakeRow<uint8x16_t>(New, Pitch)) {}

  /// Adds up the errors of whole patches. False when a look half way tells that none can win: the sums are
  /// then unfinished.
  template <std::size_t Count>
  [[gnu::always_inline]] bool Compare(Cursors<Count> Patch, Sums<Count>& Sum, inte_32 LeastKey,
                                      bool Look) const {
    constexpr std::make_index_sequence<Count> kAll;
    StartRow(Patch, Sum, Pitch, Row0, kAll);
    AddRow(Patch, Sum, Pitch, Row1, kAll);
    AddRow(Patch, Sum, Pitch, Row2, kAll);
    AddRow(Patch, Sum, Pitch, Row3, kAll);
    AddRow(Patch, Sum, Pitch, Row4, kAll);
    if (Look && !CanWin(Sum, LeastKey)) return false;
    AddRow(Patch, Sum, Pitch, Row5, kAll);
    AddRow(Patch, Sum, Pitch, Row6, kAll);
    AddRow(Patch, Sum, Pitch, Row7, kAll);
    AddRow(Patch, Sum, Pitch, Row8, kAll);
    AddRow(Patch, Sum, Pitch, Row9, kAll);
    return true;
  }
};

// ---- Blocks of any size ----

struct AnyBlock {
  std::ptrdiff_t Pitch;
  const DATA_08* New;
  DATA_32 BlockSize;

  [[gnu::always_inline]] AnyBlock(const DATA_08* Block, DATA_32 Size, std::ptrdiff_t ImagePitch)
      : Pitch(ImagePitch), New(Block), BlockSize(Size) {}

  template <typename Pixels, std::size_t Count>
  [[gnu::always_inline]] void AddStrip(Cursors<Count>& Patch, Sums<Count>& Sum, const DATA_08* Row) const {
    for (DATA_32 y = 0; y < BlockSize; ++y) {
      AddRow(Patch, Sum, Pitch, TakeRow<Pixels>(Row, Pitch), std::make_index_sequence<Count>{});
    }
  }

  /// From below a strip of 16 columns to the top of the next one.
  template <std::size_t Count, std::size_t... K>
  [[gnu::always_inline]] void Advance(Cursors<Count>& Patch, std::index_sequence<K...> /*Candidates*/) const {
    const std::ptrdiff_t Back = static_cast<std::ptrdiff_t>(BlockSize) * Pitch;
    ((Patch.Old[K] += 16 - Back), ...);
  }

  /// Strip by strip; as for blocks of 10.
  template <std::size_t Count>
  [[gnu::always_inline]] bool Compare(Cursors<Count> Patch, Sums<Count>& Sum, inte_32 LeastKey,
                                      bool Look) const {
    DATA_32 Column = 0;
    for (; BlockSize - Column > 8; Column += 16) {
      AddStrip<uint8x16_t>(Patch, Sum, New + Column);
      if (BlockSize - Column <= 16) return true;
      if (Look && !CanWin(Sum, LeastKey)) return false;
      Advance(Patch, std::make_index_sequence<Count>{});
    }
    AddStrip<uint8x8_t>(Patch, Sum, New + Column);
    return true;
  }
};

// ---- The search ----

/// The directions of block_step.h, as wide as addresses: a move then needs no widening.
struct Way {
  std::ptrdiff_t Y, X;
};
constexpr Way kWays[9] = {{0, 0}, {-1, -1}, {-1, 0}, {-1, 1}, {0, -1}, {0, 1}, {1, -1}, {1, 0}, {1, 1}};

/// One step: the least key among the centre's and its neighbours'. Look says whether to look half way, and
/// takes whether that has ended the step.
template <typename Block>
STOPNGO_INLINE inte_32 LeastAround(const DATA_08* Centre, const Block& New, std::ptrdiff_t Step,
                                   std::ptrdiff_t StepRows, inte_32 LeastKey, bool& Look) {
  static constexpr data_32 kPlaces[kNeighbours] = {1, 2, 3, 4, 5, 6, 7, 8};
  const DATA_08* Upper = Centre - StepRows;
  const DATA_08* Lower = Centre + StepRows;
  Sums<kNeighbours> Sum{};
  const Cursors<kNeighbours> Patch = {
      {Upper - Step, Upper, Upper + Step, Centre - Step, Centre + Step, Lower - Step, Lower, Lower + Step}};
  if (!New.Compare(Patch, Sum, LeastKey, Look)) return LeastKey;
  Look = false;
  const Errors e = Total(Sum);
  const uint32x4_t First = vsliq_n_u32(vld1q_u32(kPlaces), e.First, block_step::kPlaceBits);
  const uint32x4_t Last = vsliq_n_u32(vld1q_u32(kPlaces + 4), e.Last, block_step::kPlaceBits);
  const auto Least = static_cast<inte_32>(vminvq_u32(vminq_u32(First, Last)));
  return Least < LeastKey ? Least : LeastKey;
}

/// BlockSize is 1 to block_step::kLargestBlock, and 10 for blocks of 10.
template <typename Block>
STOPNGO_INLINE void MatchGrid(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector,
                              DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  const std::ptrdiff_t Pitch = EndX;
  for (DATA_32 Row = 0; Row < NumY; ++Row) {
    std::size_t Offset = BlockSize + (Row + std::size_t{1}) * BlockSize * EndX;
    for (DATA_32 Column = 0; Column < NumX; ++Column, Offset += BlockSize, MotionVector += 2) {
      const DATA_08* Old = ImageOld + Offset;
      const Block New(ImageNew + Offset, BlockSize, Pitch);
      Sums<1> Centre{};
      New.Compare(Cursors<1>{{Old}}, Centre, 0, false);
      auto LeastKey = static_cast<inte_32>(vaddvq_u32(Centre.Of[0]) << block_step::kPlaceBits);
      std::ptrdiff_t Y = 0;
      std::ptrdiff_t X = 0;
      // A moving block rarely ends a step early: after one look in vain there is none in its further steps.
      bool Look = true;
      std::ptrdiff_t StepRows = 4 * Pitch;
      for (std::ptrdiff_t Step = 4; Step > 0; Step >>= 1, StepRows >>= 1) {
        const inte_32 Least = LeastAround(Old, New, Step, StepRows, LeastKey, Look);
        LeastKey = Least & ~block_step::kPlaces;
        const Way& Taken = kWays[Least & block_step::kPlaces];
        const std::ptrdiff_t Right = Taken.X * Step;
        Old += Taken.Y * StepRows + Right;
        Y += Taken.Y * Step;
        X += Right;
      }
      // The vector points against the displacement in the previous image.
      MotionVector[0] = static_cast<inte_08>(-Y);
      MotionVector[1] = static_cast<inte_08>(-X);
    }
  }
}

// resample_text.h: resampling by byte shuffles, for whatever vectors are in scope.
//
// Not a header of its own: the file of an instruction set includes it once, amid its namespace and target,
// after Bytes, kBytes, Load and Store are known there, and with them
//     Place                          the SourcePlace (resample_place.h) of a vector's halves
//     Selector<S>                    a shuffle that picks each half's bytes out of 16 × S
//     MakeSelector<S>(Picks)         the one for the given picks, each below 16 × S
//     Gather<S>(Row, Place, Select)  the picked bytes of a source row
//
// Nothing is known of the patterns beforehand. Whatever a pattern is, 16 output pixels side by side come
// from source bytes that lie close together, so they are one byte shuffle of one, two or three source
// vectors. Which bytes, depends on the column alone: the shuffles of a tile of columns are worked out once
// and serve every row.

/// The most vectors of a tile: with 16 bytes each two tiles, with 32 bytes one make up 220 columns, and
/// shuffles and results of a tile fit the registers of AArch64.
constexpr int kTileVectors = 7;
constexpr int kCacheLine = 64;

/// Where and how the vector of the output columns from Column on is picked from a source row of which
/// Length bytes may be read.
template <int S>
void PlanVector(const ColumnOffsets& Columns, std::size_t Column, std::size_t Length, Place& From,
                Selector<S>& Select) {
  alignas(kBytes) data_08 Picks[kBytes];
  for (int Half = 0; Half < kBytes / kHalf; ++Half) {
    const int First = Half * kHalf;
    From.Offset[Half] = Columns.Pick(Column + First, S, Length, Picks + First);
  }
  Select = MakeSelector<S>(Load(Picks));
}

// ---- Magnified and unevenly reduced rows ----

/// A tile: the vectors from the output column Start on side by side, the last one ending with the last of
/// the tile's columns, so that it may cover some twice.
template <int S>
struct Tile {
  std::size_t Start;
  std::size_t Last;  ///< the column of the last vector
  Place From[kTileVectors];
  Selector<S> Select[kTileVectors];
};

/// Fills a tile of all rows. A source row is shuffled once, and stored to every output row that repeats it.
template <int S, int... Vector>
void FillTile(const data_08* Input, const Tile<S>& Plan, const RowRuns& Runs, data_08* Output, DATA_32 CropY,
              DATA_32 CropX, std::integer_sequence<int, Vector...> /*Vectors*/) {
  constexpr int kLast = static_cast<int>(sizeof...(Vector)) - 1;
  // Copies of what the stores to Output, as far as a compiler knows, could change.
  const Place From[] = {Plan.From[Vector]...};
  const Selector<S> Select[] = {Plan.Select[Vector]...};
  const std::size_t Last = Plan.Last - Plan.Start;
  Output += Plan.Start;
  std::ptrdiff_t Source = Runs.First();
  for (const RowRuns::Run* Run = Runs.Begin();; Run = Run->Next) {
    const Bytes Pixels[] = {Gather<S>(Input + Source, From[Vector], Select[Vector])...};
    // The last group of rows can be cut short.
    const DATA_32 Rows = std::min(Run->Rows, CropY);
    const data_08* const RunEnd = Output + std::size_t{Rows} * CropX;
    do {
      (Store(Output + (Vector == kLast ? Last : Vector * std::size_t{kBytes}), Pixels[Vector]), ...);
      Output += CropX;
    } while (Output != RunEnd);
    CropY -= Rows;
    if (CropY == 0) return;
    Source += Run->Step;
  }
}

/// Fills all columns, tile after tile, from 16 × S bytes for each half vector.
template <int S>
void Fill(const data_08* Input, const ColumnOffsets& Columns, std::size_t Length, const RowRuns& Runs,
          data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  Tile<S> Plan;
  std::size_t Vectors;
  for (std::size_t Start = 0; Start < CropX; Start += Vectors * kBytes) {
    // Seven, three or one vector at a time: three bodies of code serve every width.
    const std::size_t Left = (CropX - Start + kBytes - 1) / kBytes;
    Vectors = Left >= kTileVectors ? kTileVectors : Left >= 3 ? 3 : 1;
    Plan.Start = Start;
    for (std::size_t i = 0; i < Vectors; ++i) {
      Plan.Last = std::min(Start + i * kBytes, std::size_t{CropX} - kBytes);
      PlanVector<S>(Columns, Plan.Last, Length, Plan.From[i], Plan.Select[i]);
    }
    if (Vectors == kTileVectors) {
      FillTile(Input, Plan, Runs, Output, CropY, CropX, std::make_integer_sequence<int, kTileVectors>());
    } else if (Vectors == 3) {
      FillTile(Input, Plan, Runs, Output, CropY, CropX, std::make_integer_sequence<int, 3>());
    } else {
      // Alone, it is the last vector, and may begin before the others end.
      Plan.Start = Plan.Last;
      FillTile(Input, Plan, Runs, Output, CropY, CropX, std::make_integer_sequence<int, 1>());
    }
  }
}

// ---- Every S-th pixel ----

/// S × kBytes source bytes make up a vector of every S-th pixel.
template <int S>
constexpr Place EverySource() {
  Place From = {};
  for (int Half = 0; Half < kBytes / kHalf; ++Half) From.Offset[Half] = std::size_t{S} * kHalf * Half;
  return From;
}

/// Picks every S-th pixel of them, from First on.
template <int S>
Selector<S> PickEvery(int First) {
  alignas(kBytes) data_08 Picks[kBytes];
  for (int i = 0; i < kBytes; ++i) Picks[i] = static_cast<data_08>(First + S * (i % kHalf));
  return MakeSelector<S>(Load(Picks));
}

/// The vector of every S-th pixel from the one at Pixel on; with S = 1, a copy.
template <int S>
STOPNGO_INLINE Bytes TakeEvery(const data_08* Pixel, const Selector<S>& Select) {
  if constexpr (S == 1) {
    return Load(Pixel);
  } else {
    return Gather<S>(Pixel, EverySource<S>(), Select);
  }
}

/// Small cores follow a row's stride on their own; there the instructions would only cost.
template <int Count>
STOPNGO_INLINE void Prefetch(const data_08* Pixel) {
  if constexpr (kBytes == 16) return;
  for (int i = 0; i < Count; i += kCacheLine) __builtin_prefetch(Pixel + i);
}

/// One shuffle serves a whole row, and its twin the row's end: there the source bytes end with the sampled
/// pixel instead of starting with it. Rows are worked one after the other, and the end of a row is read
/// before any of it is written: where Output is Input, what is yet to be read is still as it was.
/// CropX exceeds kBytes.
template <int S>
void Decimate(const data_08* Input, const RowRuns& Runs, data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  const Selector<S> Every = PickEvery<S>(0);
  const Selector<S> EveryLast = PickEvery<S>(S - 1);
  const std::size_t EndColumn = CropX - std::size_t{kBytes};
  RowWalk Row(Input, Runs, CropY);
  do {
    const data_08* Pixel = Row.Source();
    const std::ptrdiff_t Ahead = Row.Ahead();
    const data_08* const PixelEnd = Pixel + S * EndColumn - (S - 1);
    Prefetch<S * kBytes>(PixelEnd + Ahead);
    const Bytes End = TakeEvery<S>(PixelEnd, EveryLast);
    data_08* const OutputLast = Output + EndColumn;
    for (; Output + kBytes < OutputLast; Output += 2 * kBytes, Pixel += 2 * S * kBytes) {
      Prefetch<2 * S * kBytes>(Pixel + Ahead);
      const Bytes First = TakeEvery<S>(Pixel, Every);
      const Bytes Second = TakeEvery<S>(Pixel + S * kBytes, Every);
      Store(Output, First);
      Store(Output + kBytes, Second);
    }
    if (Output < OutputLast) Store(Output, TakeEvery<S>(Pixel, Every));
    Store(OutputLast, End);
    Output = OutputLast + kBytes;
  } while (Row.Advance());
}

// ---- Whole rows ----

/// Four vectors that are all read before the first of them is written: loads and stores come in bursts.
struct Burst {
  Bytes First, Second, Third, Fourth;
};

constexpr int kBurst = 4 * kBytes;

STOPNGO_INLINE Burst LoadBurst(const data_08* Pixel) {
  return {Load(Pixel), Load(Pixel + kBytes), Load(Pixel + 2 * kBytes), Load(Pixel + 3 * kBytes)};
}

STOPNGO_INLINE void StoreBurst(data_08* Pixel, const Burst& Pixels) {
  Store(Pixel, Pixels.First);
  Store(Pixel + kBytes, Pixels.Second);
  Store(Pixel + 2 * kBytes, Pixels.Third);
  Store(Pixel + 3 * kBytes, Pixels.Fourth);
}

/// Every pixel of rows that take a burst at least. A row ends with a burst that overlaps the one before it
/// and, as above, is read before any of the row is written.
void CopyRows(const data_08* Input, const RowRuns& Runs, data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  const std::size_t Last = CropX - std::size_t{kBurst};
  RowWalk Row(Input, Runs, CropY);
  do {
    const data_08* Pixel = Row.Source();
    const data_08* const PixelLast = Pixel + Last;
    const std::ptrdiff_t Ahead = Row.Ahead();
    Prefetch<kBurst>(PixelLast + Ahead);
    const Burst End = LoadBurst(PixelLast);
    for (data_08* Out = Output; Pixel < PixelLast; Pixel += kBurst, Out += kBurst) {
      Prefetch<kBurst>(Pixel + Ahead);
      StoreBurst(Out, LoadBurst(Pixel));
    }
    StoreBurst(Output + Last, End);
    Output += CropX;
  } while (Row.Advance());
}

// ---- The choice ----

/// Whether the call was served; if not, its columns are too few or too far apart. Only patterns of one
/// output pixel may work in place, so only these need the order of rows; the others go tile by tile.
bool ResampleVectors(const data_08* Input, std::ptrdiff_t RowStep, const Pattern& Rows,
                     const Pattern& Columns, data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  if (CropX <= kBytes || CropY == 0) return false;
  const RowRuns Runs(Rows, RowStep);
  // A mere copy takes no heed of the offset, which is 0 in it.
  if (Columns.Output == 1) {
    switch (Columns.Source) {
      case 1:
        if (CropX >= kBurst) {
          CopyRows(Input, Runs, Output, CropY, CropX);
        } else {
          Decimate<1>(Input, Runs, Output, CropY, CropX);
        }
        return true;
      case 2:
        Decimate<2>(Input + Columns.Offset[0], Runs, Output, CropY, CropX);
        return true;
      case 3:
        Decimate<3>(Input + Columns.Offset[0], Runs, Output, CropY, CropX);
        return true;
      default:
        return false;
    }
  }
  const ColumnOffsets Offsets(Columns);
  const std::size_t Length = Columns.At(CropX - 1) + std::size_t{1};
  const int Sources = (Offsets.Reach() + kHalf - 1) / kHalf;
  if (Sources > 3 || Length < std::size_t{kHalf} * Sources) return false;
  if (Sources == 1) {
    Fill<1>(Input, Offsets, Length, Runs, Output, CropY, CropX);
  } else if (Sources == 2) {
    Fill<2>(Input, Offsets, Length, Runs, Output, CropY, CropX);
  } else {
    Fill<3>(Input, Offsets, Length, Runs, Output, CropY, CropX);
  }
  return true;
}

// median_text.h: both 3 × 3 medians over vectors of kBytes pixels, for whatever vectors are in scope.
//
// Not a header of its own: the file of an instruction set includes it once, amid its namespace and target,
// after Bytes, kBytes, Load, Store, Broadcast, Min, Max, LastLane, LowerHalf and MoveUp are known there.

/// Three pixels above each other, per lane, in order.
struct Column {
  Bytes Low, Mid, High;
};

/// Puts a third pixel in order with a pair.
STOPNGO_INLINE Column Insert(Bytes PairLow, Bytes PairHigh, Bytes Third) {
  const Bytes Upper = Max(PairLow, Third);
  return {Min(PairLow, Third), Min(PairHigh, Upper), Max(PairHigh, Upper)};
}

STOPNGO_INLINE Column Sort(Bytes a, Bytes b, Bytes c) { return Insert(Min(a, b), Max(a, b), c); }

// ---- In place ----

/// The median of a window whose left pixel v is the result just before: with the other eight pixels known
/// it is min(max(v, Low), High), Low and High being the fourth and the fifth of the eight. So every pixel
/// of a row is a clamp of its left neighbour, clamps after each other are a clamp again, and a row becomes
/// a prefix scan of clamps that depend on v nowhere.
struct Clamp {
  Bytes Low, High;
};

STOPNGO_INLINE Bytes Apply(Clamp c, Bytes v) { return Min(Max(v, c.Low), c.High); }

/// The centre and the right pixel of each window, read before the vector to the left is stored: the first
/// two vectors of a row may overlap.
struct Ahead {
  Bytes Centre, Right;
};

STOPNGO_INLINE Ahead LookAhead(const data_08* Pixel) { return {Load(Pixel), Load(Pixel + 1)}; }

/// Fourth and fifth of the eight known pixels: of any six pixels neither the least nor the greatest can be
/// one of them, then of any five that remain with one to come, and so on.
STOPNGO_INLINE Clamp Limits(const data_08* Pixel, std::size_t Width, Ahead Row) {
  const data_08* Above = Pixel - Width;
  const data_08* Below = Pixel + Width;
  const Bytes AboveLeft = Load(Above - 1);
  const Bytes BelowLeft = Load(Below - 1);
  const Column a = Sort(Row.Centre, Load(Below), Load(Above));
  const Column b = Sort(Row.Right, Load(Below + 1), Load(Above + 1));
  // Without the least and the greatest of the two columns' six.
  const Bytes p = Max(a.Low, b.Low);
  const Bytes q = Min(a.Mid, b.Mid);
  const Bytes r = Max(a.Mid, b.Mid);
  const Bytes s = Min(a.High, b.High);
  // With the left column's two: again without the least and the greatest.
  const Bytes u = Max(Min(p, q), Min(AboveLeft, BelowLeft));
  const Bytes v = Max(p, q);
  const Bytes w = Min(r, s);
  const Bytes z = Min(Max(r, s), Max(AboveLeft, BelowLeft));
  const Bytes x = Max(Min(u, z), Min(v, w));
  const Bytes y = Min(Max(u, z), Max(v, w));
  return {Min(x, y), Max(x, y)};
}

/// Puts behind the clamp of each lane what the N lanes before it, in its 16, have gathered.
template <int N>
STOPNGO_INLINE Clamp Gather(Clamp c) {
  const Clamp Before = {MoveUp<N>(c.Low, Broadcast(0)), MoveUp<N>(c.High, Broadcast(255))};
  return {Apply(c, Before.Low), Apply(c, Before.High)};
}

/// kBytes results; takes the result before the first in every lane of Before, and leaves the last one there.
STOPNGO_INLINE Bytes FilterRun(const data_08* Pixel, std::size_t Width, Ahead Row, Bytes& Before) {
  Clamp c = Limits(Pixel, Width, Row);
  c = Gather<1>(c);
  c = Gather<2>(c);
  c = Gather<4>(c);
  c = Gather<8>(c);
  if (kBytes == 16) {
    const Bytes Result = Apply(c, Before);
    Before = LastLane<0>(Result);
    return Result;
  }
  // Two clamps from run to run, and no lane moves on the way: the shortest chain.
  const Bytes Middle = Apply({LastLane<0>(c.Low), LastLane<0>(c.High)}, Before);
  const Bytes Result = Apply(c, LowerHalf(Before, Middle));
  Before = Apply({LastLane<1>(c.Low), LastLane<1>(c.High)}, Middle);
  return Result;
}

/// One row of Length pixels, at least kBytes. The odd remainder comes first: the first vector is computed
/// and stored whole, and the second starts inside it, with pixels that it has read before.
STOPNGO_INLINE void FilterRow(data_08* Pixel, std::size_t Width, std::size_t Length) {
  Ahead Row = LookAhead(Pixel);
  Bytes Before = Broadcast(Pixel[-1]);
  Bytes Result = FilterRun(Pixel, Width, Row, Before);
  const std::size_t First = (Length - 1) % kBytes + 1;
  data_08* const End = Pixel + Length;
  if (First == Length) {
    Store(Pixel, Result);
    return;
  }
  Row = LookAhead(Pixel + First);
  Store(Pixel, Result);
  Pixel += First;
  Before = Broadcast(Pixel[-1]);
  while (true) {
    Result = FilterRun(Pixel, Width, Row, Before);
    Store(Pixel, Result);
    Pixel += kBytes;
    if (Pixel == End) return;
    Row = LookAhead(Pixel);
  }
}

/// The interior must be at least kBytes wide.
STOPNGO_INLINE void FilterRows(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  for (DATA_32 y = Border; y < Height - Border; ++y) {
    FilterRow(Image + std::size_t{y} * Width + Border, Width, Width - 2 * Border);
  }
}

// ---- Separate output ----

/// The median of nine, of three ordered columns: the median of the greatest low, the median mid and the
/// least high.
STOPNGO_INLINE Bytes Median(const Column& a, const Column& b, const Column& c) {
  const Bytes Low = Max(Max(a.Low, b.Low), c.Low);
  const Bytes Mid = Max(Min(a.Mid, b.Mid), Min(Max(a.Mid, b.Mid), c.Mid));
  const Bytes High = Min(Min(a.High, b.High), c.High);
  return Max(Min(Low, Mid), Min(Max(Low, Mid), High));
}

/// The columns of two rows of windows: the two middle pixels of four belong to both.
struct ColumnPair {
  Column Upper, Lower;
};

STOPNGO_INLINE ColumnPair SortPair(const data_08* Pixel, std::size_t Width) {
  const Bytes First = Load(Pixel);
  const Bytes Second = Load(Pixel + Width);
  const Bytes Low = Min(First, Second);
  const Bytes High = Max(First, Second);
  return {Insert(Low, High, Load(Pixel - Width)), Insert(Low, High, Load(Pixel + 2 * Width))};
}

STOPNGO_INLINE void MedianOfTwoRows(const data_08* Pixel, std::size_t Width, data_08* Output) {
  const ColumnPair a = SortPair(Pixel - 1, Width);
  const ColumnPair b = SortPair(Pixel, Width);
  const ColumnPair c = SortPair(Pixel + 1, Width);
  Store(Output, Median(a.Upper, b.Upper, c.Upper));
  Store(Output + Width, Median(a.Lower, b.Lower, c.Lower));
}

/// Two rows of Length pixels, at least kBytes; the last vector overlaps.
STOPNGO_INLINE void MedianRowPair(const data_08* Pixel, std::size_t Width, data_08* Output,
                                  std::size_t Length) {
  for (std::size_t x = 0; x + kBytes < Length; x += kBytes) MedianOfTwoRows(Pixel + x, Width, Output + x);
  MedianOfTwoRows(Pixel + Length - kBytes, Width, Output + Length - kBytes);
}

STOPNGO_INLINE void MedianRow(const data_08* Pixel, std::size_t Width, data_08* Output, std::size_t Length) {
  std::size_t x = 0;
  while (true) {
    Column Columns[3];
    for (std::size_t k = 0; k < 3; ++k) {
      const data_08* Centre = Pixel + x + k - 1;
      Columns[k] = Sort(Load(Centre - Width), Load(Centre), Load(Centre + Width));
    }
    Store(Output + x, Median(Columns[0], Columns[1], Columns[2]));
    if (x + kBytes == Length) return;
    x = x + 2 * kBytes < Length ? x + kBytes : Length - kBytes;
  }
}

/// The interior must be at least kBytes wide.
STOPNGO_INLINE void MedianRows(const data_08* Image, std::size_t Height, std::size_t Width, data_08* Output) {
  const std::size_t Length = Width - 2;
  std::size_t y = 1;
  for (; y + 2 < Height; y += 2) {
    MedianRowPair(Image + y * Width + 1, Width, Output + y * Width + 1, Length);
  }
  // An odd row is left over; with three rows it is the only one.
  if (y + 1 < Height) MedianRow(Image + y * Width + 1, Width, Output + y * Width + 1, Length);
}

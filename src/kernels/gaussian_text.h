// gaussian_text.h: the recursive Gaussian along a wavefront, for whatever vectors of words are in scope.
//
// Not a header of its own: the file of an instruction set includes it once, amid its namespace and target,
// after Words, kWords and the operations on words and tiles are known there.
//
// The lanes of a vector are rows, each four columns behind the row above, so that the results above and to
// the right exist when a lane asks for them: with three columns the chain from row to row would be too
// long. Work advances in chunks of four columns: lane l reads chunk j of its row at time j + l. A lane that
// has ended its row goes on with the row kWords further down, so the slant costs nothing but at the very
// beginning and end. A row takes chunks of its columns -2 … Length + 1 around the interior; a result leaves
// two columns after the newest column has come in, so chunk j gives the interior's pixels 4j - 4 … 4j - 1.
//
// The mask is {2 4 5 4 2}, {4 9 12 9 4}, {5 12 15 12 5} and upwards again. With b = the pixels one row away
// and e = those two rows away + 2b, its columns weigh 2e, 4e + b and 5e + 2b, besides the row's own pixels.

constexpr int kChunk = 4;

using data_16 = unsigned short;

/// Unfiltered pixels of one time as words, column by column: the lanes' and those of the two rows below, so
/// that the pixels below the lanes are loads one and two words further on. Such a load spans two stores and
/// has to wait until both have left the processor's queue: chunks are read one time before they are needed.
struct Incoming {
  data_16 Pixel[kChunk][kWords + 8];
};

/// The two rows above the first lane, in pairs like those below: for the results one row up, and for those
/// two rows up, where the second lane is a chunk behind the first.
struct Above {
  data_32 Near[kChunk];
  data_32 Far[kChunk];
  data_32 Former;  ///< the nearer row's four bytes of the last time
};

/// What runs along the columns.
struct Flow {
  Words Sum[4];      ///< sums begun, the one that ends next first
  Words Result[10];  ///< six results of earlier chunks, oldest first, and those of this one
  Words Left12, Left5;
};

/// The unfiltered pixels of four times. Seen from a lane, the row below is in its chunk a time later.
struct Window {
  const Incoming *Former, *Now, *Next, *Last;
};

/// Factors, kept from the compiler's sight: a multiplication in a vector costs less than the shifts and
/// additions that it would take for one by a number it knows.
struct Factors {
  Words Five, Ten, Twelve, Fifteen, HundredTwenty;
};

/// Lanes whose results are the unfiltered pixels: in a chunk's first Until columns, and after them.
struct Passing {
  Words Early, Late;
  DATA_32 Until;
};

/// Takes column I of a chunk into the sums, and ends one of them but for the pixel left of its result. What
/// runs from result to result is kept short: the terms of this column that are known early come first.
template <int I>
STOPNGO_INLINE Words TakeColumn(Flow& f, const Window& w, const Above& Up, const Factors& k) {
  const Words Above1 = MoveRowsDown<1>(f.Result[4 + I], BroadcastPair(Up.Near[I]));
  const Words Above2 = MoveRowsDown<2>(f.Result[I], BroadcastPair(Up.Far[I]));
  const Words b = Add(Above1, LoadWords(w.Next->Pixel[I] + 1));
  const Words e = Add(Add(Above2, LoadWords(w.Last->Pixel[I] + 2)), Add(b, b));
  const Words Outer = Add(e, e);
  const Words Inner = Add(Add(Outer, Outer), b);
  const Words m = LoadWords(w.Now->Pixel[I]);
  const Words Sum = Add(Add(f.Sum[0], Times(m, k.Five)), Outer);
  f.Sum[0] = Add(Add(Add(f.Sum[1], Times(m, k.Twelve)), f.Left5), Inner);
  f.Sum[1] = Add(Add(f.Sum[2], Times(m, k.Fifteen)), Add(Inner, Add(e, b)));
  f.Sum[2] = Add(f.Sum[3], Inner);
  f.Sum[3] = Outer;
  return Sum;
}

template <int I, bool kPasses>
STOPNGO_INLINE void FilterColumn(Flow& f, const Window& w, const Above& Up, const Passing& Pass,
                                 const Factors& k) {
  const Words Tenth = Quotient1590(TakeColumn<I>(f, w, Up, k), f.Left12);
  Words Result = Times(Tenth, k.Ten);
  f.Left12 = Times(Tenth, k.HundredTwenty);
  if (kPasses) {
    const Words Mask = DATA_32{I} < Pass.Until ? Pass.Early : Pass.Late;
    const Words Own = LoadWords((I < 2 ? w.Former : w.Now)->Pixel[(I + 2) % kChunk]);
    Result = Select(Mask, Own, Result);
    f.Left12 = Select(Mask, Times(Own, k.Twelve), f.Left12);
  }
  f.Left5 = Times(Result, k.Five);
  f.Result[6 + I] = Result;
}

template <bool kPasses>
STOPNGO_INLINE void FilterChunk(Flow& f, const Window& w, const Above& Up, const Passing& Pass,
                                const Factors& k) {
  FilterColumn<0, kPasses>(f, w, Up, Pass, k);
  FilterColumn<1, kPasses>(f, w, Up, Pass, k);
  FilterColumn<2, kPasses>(f, w, Up, Pass, k);
  FilterColumn<3, kPasses>(f, w, Up, Pass, k);
}

/// The picture in chunks. Times are counted in chunks too: lane l begins row l of a band at the band's time l.
struct Picture {
  data_08* Image;
  DATA_32 Border, Width, Height;
  DATA_32 Chunks;   ///< of a row
  DATA_32 Partial;  ///< columns in the last one, 0 for a whole one

  /// The first chunk of an interior row, or of one of the two rows below the interior.
  [[nodiscard]] data_08* Row(DATA_32 Index) const {
    return Image + (std::size_t{Border} + Index) * Width + Border - 2;
  }
  [[nodiscard]] DATA_32 Rows() const { return Height - 2 * Border; }
  [[nodiscard]] const data_08* End() const { return Image + std::size_t{Width} * Height; }
};

struct Clock {
  DATA_32 Band, Phase;
  void Advance(DATA_32 Chunks) {
    if (++Phase == Chunks) {
      Phase = 0;
      ++Band;
    }
  }
};

/// Where each lane, and the two rows below, read next. A lane without a row reads something of the image.
constexpr DATA_32 kReaders = kWords + 2;

struct Source {
  Clock t;
  const data_08* From[kWords + 4];  ///< a multiple of four, for the sake of the loop over them
};

STOPNGO_INLINE void StartReading(const Picture& at, Source& In) {
  In.t = {0, 0};
  for (DATA_32 l = 0; l < kWords + 4; ++l) {
    In.From[l] = at.Row(l < at.Rows() + 2 ? l : 0) - std::size_t{l} * kChunk;
  }
}

STOPNGO_INLINE void Receive(const Picture& at, Source& In, Incoming& To) {
  const DATA_32 Ending = In.t.Phase + 1 == at.Chunks ? 0 : In.t.Phase + 1;
  const data_08* Short = nullptr;
  if (at.Partial != 0 && Ending < kReaders && at.End() - In.From[Ending] < kChunk) {
    Short = In.From[Ending];
    In.From[Ending] = at.Image;
  }
  Words Column[kChunk];
  data_32 Below[kChunk];
  WidenTile(In.From, Column);
  WidenPair(In.From[kWords], In.From[kWords + 1], Below);
#pragma GCC unroll 4
  for (int i = 0; i < kChunk; ++i) {
    StoreWords(To.Pixel[i], Column[i]);
    std::memcpy(To.Pixel[i] + kWords, Below + i, sizeof(Below[i]));
  }
  if (Short != nullptr) {
    // The last chunk of the image's last row has fewer than four bytes to read.
    for (DATA_32 i = 0; i < at.Partial; ++i) To.Pixel[i][Ending] = Short[i];
  }
#pragma GCC unroll 20
  for (auto& From : In.From) From += kChunk;
  In.t.Advance(at.Chunks);
  // Now and not when it is needed: the sum above must not wait for a single pointer just stored.
  const DATA_32 Lane = In.t.Phase;
  if (Lane < kReaders && In.t.Band > 0) {
    const DATA_32 Row = In.t.Band * kWords + Lane;
    In.From[Lane] = at.Row(Row < at.Rows() + 2 ? Row : 0);
  }
}

/// Where each lane writes next. A lane without a row, and one in its first chunk, which brings no results
/// yet, writes to Nowhere, again and again. The end of a partial chunk brings border pixels, unchanged.
struct Sink {
  data_08* To[kWords];
  std::size_t Step[kWords];
  data_08 Nowhere[kChunk];
};

STOPNGO_INLINE void Idle(Sink& Out, DATA_32 Lane) {
  Out.To[Lane] = Out.Nowhere;
  Out.Step[Lane] = 0;
}

STOPNGO_INLINE void Deliver(const Picture& at, Clock t, const Words* Results, Sink& Out) {
  NarrowTile(Results, Out.To);
#pragma GCC unroll 16
  for (DATA_32 l = 0; l < kWords; ++l) Out.To[l] += Out.Step[l];
  t.Advance(at.Chunks);
  if (t.Phase < kWords) Idle(Out, t.Phase);
  if (t.Phase - 1 < kWords) {
    const DATA_32 Row = t.Band * kWords + t.Phase - 1;
    if (Row < at.Rows()) {
      Out.To[t.Phase - 1] = at.Row(Row) + 2;
      Out.Step[t.Phase - 1] = kChunk;
    }
  }
}

constexpr DATA_32 Smaller(DATA_32 a, DATA_32 b) { return a < b ? a : b; }

/// Border pixels pass in a row's first chunk, lane Phase, and past the end of a partial last one, the lane
/// after it or lane 0.
STOPNGO_INLINE Passing PassingLanes(const Picture& at, DATA_32 Phase) {
  const DATA_32 First = Smaller(Phase, kWords);
  const DATA_32 Last = Phase + 1 == at.Chunks ? 0 : Smaller(Phase + 1, kWords);
  const bool Ends = at.Partial != 0;
  return {LaneMask(First), Ends ? Either(LaneMask(First), LaneMask(Last)) : LaneMask(First), at.Partial};
}

STOPNGO_INLINE void ReadAbove(const Picture& at, DATA_32 Band, DATA_32 Phase, Above& Up) {
  const data_08* Row = at.Row(Band * kWords) + std::size_t{Phase} * kChunk - at.Width;
  WidenPair(Row, Row, Up.Near);
  WidenPair(Row - at.Width, reinterpret_cast<const data_08*>(&Up.Former), Up.Far);
  std::memcpy(&Up.Former, Row, sizeof(Up.Former));
  // Broadcasts from memory cost less than those from a register that still holds the pairs.
  asm("" : "+m"(Up));
}

/// Rows need enough chunks that a lane's next row is not reached before its neighbours are ready.
constexpr DATA_32 kLeastChunks = kWords + 4;

constexpr bool SuitsWavefront(DATA_32 Border, DATA_32 Width) {
  return Border >= 2 && Width - 2 * Border >= kChunk * kLeastChunks;
}

STOPNGO_INLINE void RunWavefront(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  const DATA_32 Length = Width - 2 * Border;
  const DATA_32 Rows = Height - 2 * Border;
  const DATA_32 Bands = (Rows + kWords - 1) / kWords;
  const Picture at = {Image, Border, Width, Height, (Length + kChunk - 1) / kChunk + 1, Length % kChunk};
  Incoming Ring[5];
  Ring[0] = {};
  Window w = {Ring, Ring + 1, Ring + 2, Ring + 3};
  Incoming* Coming = Ring + 4;
  Source In;
  StartReading(at, In);
  for (int n = 1; n < 4; ++n) Receive(at, In, Ring[n]);
  Sink Out;
  for (DATA_32 l = 0; l < kWords; ++l) Idle(Out, l);
  const Words Zero = Constant(0);
  Flow f = {
      {Zero, Zero, Zero, Zero}, {Zero, Zero, Zero, Zero, Zero, Zero, Zero, Zero, Zero, Zero}, Zero, Zero};
  const Factors k = {Constant(5), Constant(10), Constant(12), Constant(15), Constant(120)};
  Above Up = {};
  const DATA_32 LastLane = Rows - (Bands - 1) * kWords - 1;
  for (Clock t = {0, 0}; t.Band < Bands || t.Phase < LastLane; t.Advance(at.Chunks)) {
    Receive(at, In, *Coming);
    // Past the last band the second lane still needs what was read last; the rest is of no matter.
    ReadAbove(at, Smaller(t.Band, Bands - 1), t.Phase, Up);
    if (t.Phase < kWords || t.Phase + 1 == at.Chunks) {
      FilterChunk<true>(f, w, Up, PassingLanes(at, t.Phase), k);
    } else {
      FilterChunk<false>(f, w, Up, PassingLanes(at, t.Phase), k);
    }
    Deliver(at, t, f.Result + 6, Out);
    f.Result[0] = f.Result[4];
    f.Result[1] = f.Result[5];
    f.Result[2] = f.Result[6];
    f.Result[3] = f.Result[7];
    f.Result[4] = f.Result[8];
    f.Result[5] = f.Result[9];
    Incoming* const Filled = Coming;
    Coming = Ring + (w.Former - Ring);
    w = {w.Now, w.Next, w.Last, Filled};
  }
}

// neon_filter.cpp: the three filters with NEON.
#include <arm_neon.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "forms.h"
#include "v128.h"

namespace neon {
namespace {

using namespace v128;

#include "median.inc"

}  // namespace

void MedianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  if (Width - 2 * Border < kBytes) return generic::MedianInPlace(Image, Border, Width, Height);
  FilterRows(Image, Border, Width, Height);
}

void MedianSeparate(const DATA_08* image, int rows, int cols, data_08* filteredimage) {
  if (cols - 2 < kBytes) return generic::MedianSeparate(image, rows, cols, filteredimage);
  MedianRows(image, static_cast<std::size_t>(rows), static_cast<std::size_t>(cols), filteredimage);
}

// ---- Gaussian ----

namespace {

// A result needs the two results to its left, so a row splits into a parallel part, the weighted sum of
// all the other pixels, and a chain of scalars. Results are tenths there: the chain's q is sum / 1590, and
// 10 q the pixel. Two rows share one chain, the lower row in the upper halves of 64-bit numbers: no half
// ever overflows. It follows two runs of 16 pixels behind, as it needs results up to two pixels further
// right in the row above; and where a row ends, its half of the chain goes on with the next row but one.

/// floor(n / 1590) = n × kReciprocal >> kShift: kReciprocal × 1590 = 2^26 + 266, and 266 n stays below
/// 2^26 for every sum n up to 159 × 255; the product stays below 2^32.
constexpr data_32 kReciprocal = 42207;
constexpr int kShift = 26;
/// What a product leaves in each half behind the shift.
constexpr std::uint64_t kTenths = 0x0000003F0000003F;
/// The weights of the two pixels to the left; ten times that for their tenths.
constexpr data_32 kLeft2 = 5 * kReciprocal;
constexpr data_32 kLeft1 = 12 * kReciprocal;

constexpr std::size_t kRun = 16;
constexpr std::size_t kLag = 2;
/// Rows have at least four runs: the upper row of the next pair then stays as far behind the lower row of
/// this one, which has lagged from the start.
constexpr std::size_t kLeastLength = 3 * kRun + 1;

/// Weights in registers. The empty instruction keeps compilers from making them anew at each use.
struct Weights {
  uint16x8_t Rows;
  uint8x16_t Own, Right1, Right2;
};

STOPNGO_INLINE Weights LoadWeights() {
  static constexpr std::uint16_t kRows[8] = {2, 4, 6, kReciprocal};
  Weights w = {vld1q_u16(kRows), vdupq_n_u8(15), vdupq_n_u8(12), vdupq_n_u8(5)};
  asm("" : "+w"(w.Rows), "+w"(w.Own), "+w"(w.Right1), "+w"(w.Right2));
  return w;
}

/// Eight columns' sums over the rows above and below, under the three different columns of the mask: half
/// the outer, the inner, and the negative of the centre column, modulo 2^16.
struct Terms {
  uint16x8_t Outer, Inner, Centre;
};

/// Far is the sum of the two rows two away, Near of the two next to the pixel's. With h = Far + 2 Near the
/// columns 2 4, 4 9 and 5 12 of the mask are 2 h, 4 h + Near and 6 h - Far.
STOPNGO_INLINE Terms Weigh(uint16x8_t Far, uint16x8_t Near, const Weights& By) {
  const uint16x8_t h = vaddq_u16(Far, vshlq_n_u16(Near, 1));
  return {h, vmlaq_laneq_u16(Near, h, By.Rows, 1), vmlsq_laneq_u16(Far, h, By.Rows, 2)};
}

/// The share of the rows above and below in eight sums, from two runs of columns, the first of which begins
/// two pixels to the left.
STOPNGO_INLINE uint16x8_t SumEight(const Terms& l, const Terms& r, const Weights& By) {
  uint16x8_t Sum = vaddq_u16(vextq_u16(l.Inner, r.Inner, 1), vextq_u16(l.Inner, r.Inner, 3));
  Sum = vsubq_u16(Sum, vextq_u16(l.Centre, r.Centre, 2));
  return vmlaq_laneq_u16(Sum, vaddq_u16(l.Outer, vextq_u16(l.Outer, r.Outer, 4)), By.Rows, 0);
}

/// A row on its way: the next pixel, the terms of the eight columns from two pixels to its left on, and the
/// share of the pixels left of the row's first, which are no results and no multiples of 10.
struct RowRun {
  data_08* Pixel;
  std::size_t Left;
  Terms Edge;
  uint32x4_t Border;
};

STOPNGO_INLINE RowRun Begin(data_08* Pixel, std::size_t Pitch, std::size_t Length, const Weights& By) {
  const data_08* p = Pixel - 2;
  const uint16x8_t Far = vaddl_u8(vld1_u8(p - 2 * Pitch), vld1_u8(p + 2 * Pitch));
  const uint16x8_t Near = vaddl_u8(vld1_u8(p - Pitch), vld1_u8(p + Pitch));
  const data_32 Share[4] = {p[0] * kLeft2 + p[1] * kLeft1, p[1] * kLeft2, 0, 0};
  return {Pixel, Length, Weigh(Far, Near, By), vld1q_u32(Share)};
}

/// The pixels that a run of sums is made of: the other rows' columns 6 … 21 from its first pixel on, and its
/// own row's pixels there, one and two further right.
struct Window {
  uint8x16_t Above2, Above1, Below1, Below2, Own, Right1, Right2;
};

/// Sixteen pixels, or the first of them and zeros where the image ends between them.
STOPNGO_INLINE uint8x16_t LoadBefore(const data_08* From, const data_08* End) {
  data_08 Bytes[16] = {};
  if (From < End) std::memcpy(Bytes, From, End - From < 16 ? static_cast<std::size_t>(End - From) : 16);
  return vld1q_u8(Bytes);
}

/// The last rows' windows, which reach past the image; what lies there belongs to no pixel of the run.
[[gnu::noinline]] void LoadLast(const data_08* p, std::size_t Pitch, const data_08* End, Window& w) {
  w = {vld1q_u8(p - 2 * Pitch + 6),
       vld1q_u8(p - Pitch + 6),
       LoadBefore(p + Pitch + 6, End),
       LoadBefore(p + 2 * Pitch + 6, End),
       LoadBefore(p, End),
       LoadBefore(p + 1, End),
       LoadBefore(p + 2, End)};
}

STOPNGO_INLINE Window LoadWindow(const data_08* p, std::size_t Pitch, const data_08* End) {
  if (static_cast<std::size_t>(End - p) >= 2 * Pitch + 22) {
    return {vld1q_u8(p - 2 * Pitch + 6),
            vld1q_u8(p - Pitch + 6),
            vld1q_u8(p + Pitch + 6),
            vld1q_u8(p + 2 * Pitch + 6),
            vld1q_u8(p),
            vld1q_u8(p + 1),
            vld1q_u8(p + 2)};
  }
  Window w;
  LoadLast(p, Pitch, End, w);
  return w;
}

/// The known part of sixteen sums, times kReciprocal.
struct Known {
  uint32x4_t Of[4];
};

STOPNGO_INLINE Known SumKnown(RowRun& Row, std::size_t Pitch, const data_08* End, const Weights& By) {
  const Window w = LoadWindow(Row.Pixel, Pitch, End);
  const Terms Middle = Weigh(vaddl_u8(vget_low_u8(w.Above2), vget_low_u8(w.Below2)),
                             vaddl_u8(vget_low_u8(w.Above1), vget_low_u8(w.Below1)), By);
  const Terms Last = Weigh(vaddl_high_u8(w.Above2, w.Below2), vaddl_high_u8(w.Above1, w.Below1), By);
  uint16x8_t Low = SumEight(Row.Edge, Middle, By);
  uint16x8_t High = SumEight(Middle, Last, By);
  Row.Edge = Last;
  Low = vmlal_u8(Low, vget_low_u8(w.Own), vget_low_u8(By.Own));
  Low = vmlal_u8(Low, vget_low_u8(w.Right1), vget_low_u8(By.Right1));
  Low = vmlal_u8(Low, vget_low_u8(w.Right2), vget_low_u8(By.Right2));
  High = vmlal_high_u8(High, w.Own, By.Own);
  High = vmlal_high_u8(High, w.Right1, By.Right1);
  High = vmlal_high_u8(High, w.Right2, By.Right2);
  const uint32x4_t Border = std::exchange(Row.Border, vdupq_n_u32(0));
  return {{vmlal_laneq_u16(Border, vget_low_u16(Low), By.Rows, 3), vmull_high_laneq_u16(Low, By.Rows, 3),
           vmull_laneq_u16(vget_low_u16(High), By.Rows, 3), vmull_high_laneq_u16(High, By.Rows, 3)}};
}

/// The results before, in tenths, of both rows.
struct Chain {
  std::uint64_t Left2, Left1;

  [[gnu::always_inline]] std::uint64_t Next(std::uint64_t Sum) {
    const std::uint64_t q = ((Sum + Left2 * (10 * kLeft2) + Left1 * (10 * kLeft1)) >> kShift) & kTenths;
    Left2 = std::exchange(Left1, q);
    return q;
  }

  /// A row begins in the half outside Mask.
  void Keep(std::uint64_t Mask) {
    Left2 &= Mask;
    Left1 &= Mask;
  }
};

/// Two links. Compilers do not pair the loads and stores of a chain by themselves.
template <std::size_t Index>
STOPNGO_INLINE void FollowTwo(Chain& Links, std::uint64_t (&Sums)[kRun]) {
  std::uint64_t a;
  std::uint64_t b;
  asm("ldp %0, %1, [%2, %3]" : "=r"(a), "=&r"(b) : "r"(Sums), "i"(Index * 8), "m"(Sums));
  a = Links.Next(a);
  b = Links.Next(b);
  asm("stp %1, %2, [%3, %4]" : "+m"(Sums) : "r"(a), "r"(b), "r"(Sums), "i"(Index * 8));
}

/// A run of both rows, in place: from known sums to tenths.
template <std::size_t... I>
STOPNGO_INLINE void Follow(Chain& Links, std::uint64_t (&Sums)[kRun], std::index_sequence<I...> /*Pairs*/) {
  (FollowTwo<2 * I>(Links, Sums), ...);
}

/// Ends a row with a vector that lies partly on the run before.
STOPNGO_INLINE void StoreEnd(data_08* Pixel, uint8x16_t Result, std::size_t Left) {
  static constexpr data_08 kPlaces[kRun] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  data_08* const Before = Pixel - kRun;
  const uint8x16x2_t Both = {{vld1q_u8(Before), Result}};
  vst1q_u8(Before + Left,
           vqtbl2q_u8(Both, vaddq_u8(vld1q_u8(kPlaces), vdupq_n_u8(static_cast<data_08>(Left)))));
}

STOPNGO_INLINE void StoreRun(RowRun& Row, uint8x16_t Tenths) {
  const uint8x16_t Result = vmulq_u8(Tenths, vdupq_n_u8(10));
  if (Row.Left >= kRun) {
    vst1q_u8(Row.Pixel, Result);
    Row.Left -= kRun;
  } else {
    StoreEnd(Row.Pixel, Result, Row.Left);
    Row.Left = 0;
  }
  Row.Pixel += kRun;
}

STOPNGO_INLINE void StoreHalves(data_32* To, uint32x4_t Low, uint32x4_t High) {
  const uint32x4x2_t Both = {{Low, High}};
  vst2q_u32(To, Both);
}

/// Where the interior's rows lie.
struct Interior {
  data_08* Pixel;
  std::size_t Pitch, Length, Rows;
  const data_08* End;  ///< Of the image.
};

void BlurInterior(const Interior& Area) {
  const Weights By = LoadWeights();
  RowRun Upper = Begin(Area.Pixel, Area.Pitch, Area.Length, By);
  // Until it begins and once it has ended, a row is followed like any other, but not stored.
  RowRun Lower = Upper;
  Lower.Left = 0;
  Chain Links = {0, 0};
  std::size_t UpperRow = 2;
  std::size_t LowerRow = 1;
  for (std::size_t Run = 0;; ++Run) {
    if (Upper.Left == 0 && UpperRow < Area.Rows) {
      Upper = Begin(Area.Pixel + UpperRow * Area.Pitch, Area.Pitch, Area.Length, By);
      UpperRow += 2;
      Links.Keep(~std::uint64_t{0xFFFFFFFF});
    }
    if (Lower.Left == 0 && LowerRow < Area.Rows && Run >= kLag) {
      Lower = Begin(Area.Pixel + LowerRow * Area.Pitch, Area.Pitch, Area.Length, By);
      LowerRow += 2;
      Links.Keep(0xFFFFFFFF);
    }
    if (Upper.Left == 0 && Lower.Left == 0) return;
    const Known a = SumKnown(Upper, Area.Pitch, Area.End, By);
    const Known b = SumKnown(Lower, Area.Pitch, Area.End, By);
    std::uint64_t Sums[kRun];
    auto* const Halves = reinterpret_cast<data_32*>(Sums);
    StoreHalves(Halves, a.Of[0], b.Of[0]);
    StoreHalves(Halves + 8, a.Of[1], b.Of[1]);
    StoreHalves(Halves + 16, a.Of[2], b.Of[2]);
    StoreHalves(Halves + 24, a.Of[3], b.Of[3]);
    Follow(Links, Sums, std::make_index_sequence<kRun / 2>{});
    // The lowest byte of each half.
    const auto* const Bytes = reinterpret_cast<const data_08*>(Sums);
    const uint8x16_t First = vld4q_u8(Bytes).val[0];
    const uint8x16_t Second = vld4q_u8(Bytes + 64).val[0];
    if (Upper.Left > 0) StoreRun(Upper, vuzp1q_u8(First, Second));
    if (Lower.Left > 0) StoreRun(Lower, vuzp2q_u8(First, Second));
  }
}

}  // namespace

void GaussianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  const std::size_t Pitch = Width;
  const std::size_t Length = Width - 2 * Border;
  if (Length < kLeastLength) return generic::GaussianInPlace(Image, Border, Width, Height);
  BlurInterior({Image + Border * (Pitch + 1), Pitch, Length, Height - 2 * Border, Image + Pitch * Height});
}

}  // namespace neon

// style.h: every colour that is drawn with, each with one meaning.
#pragma once

#include <array>

#include "host/draw/canvas.h"

namespace stopngo::style {

inline constexpr Colour kPanel = Colour::Hex(0x11151C, 0.84);
inline constexpr Colour kTrack = Colour::Hex(0xFFFFFF, 0.14);  ///< the empty part of a bar, rules
inline constexpr Colour kText = Colour::Hex(0xF3F5F8);
inline constexpr Colour kMuted = Colour::Hex(0xA9B2C0);
inline constexpr Colour kBelow = Colour::Hex(0xC9D1DC);  ///< scores up to the threshold
inline constexpr Colour kAbove = Colour::Hex(0xFFB454);  ///< scores above it, and the counter they feed

inline constexpr Colour kRim = Colour::Hex(0x0A0D12, 0.55);      ///< around lines over the picture
inline constexpr Colour kGridRim = Colour::Hex(0x0A0D12, 0.35);  ///< under the borders of cells
inline constexpr Colour kGridLine = Colour::Hex(0xFFFFFF, 0.42);
inline constexpr Colour kStillRim = Colour::Hex(0x0A0D12, 0.4);  ///< a block that did not move
inline constexpr Colour kStill = Colour::Hex(0xFFFFFF, 0.6);
inline constexpr Colour kThreshold = Colour::Hex(0x11151C);  ///< its mark across a bar
inline constexpr Colour kCell = Colour::Hex(0xFFFFFF, 0.07);
inline constexpr Colour kStrip = Colour::Hex(0xFFFFFF, 0.05);  ///< under the scores of the last seconds

/// Plots on white.
inline constexpr Colour kPaper = Colour::Hex(0xFFFFFF);
inline constexpr Colour kPlotInk = Colour::Hex(0x222222);
inline constexpr Colour kPlotGrid = Colour::Hex(0xDDDDDD);
/// Of Okabe and Ito (2008), "Color Universal Design", which stay apart also for readers who do not see red and
/// green; without yellow, which is lost on white.
inline constexpr std::array kSeries{Colour::Hex(0x0072B2), Colour::Hex(0xD55E00), Colour::Hex(0x009E73),
                                    Colour::Hex(0xCC79A7), Colour::Hex(0x56B4E9), Colour::Hex(0xE69F00)};
inline constexpr Colour kCurveInk = Colour::Hex(0x1C2430);
inline constexpr Colour kCurveGrid = Colour::Hex(0xD8DEE6);
inline constexpr Colour kNetwork = Colour::Hex(0x1D6FD8);
inline constexpr std::array kOtherDetectors{Colour::Hex(0xC2410C), Colour::Hex(0x15803D),
                                            Colour::Hex(0x7E22CE)};

/// A network's weights, on dark.
inline constexpr Colour kDarkPaper = Colour::Hex(0x11151C);
inline constexpr Colour kCard = Colour::Hex(0x1A202A);
inline constexpr Colour kRaises = Colour::Hex(0xFFB454);
inline constexpr Colour kLowers = Colour::Hex(0x4C9DFF);
inline constexpr Colour kNotFinite = Colour::Hex(0xE5484D);

/// By decision: 0 no alarm, 1 alarm, 2 cooling.
struct Decision {
  const char* name;
  Colour colour;
};
inline constexpr std::array<Decision, 3> kDecisions = {{
    {"no alarm", Colour::Hex(0x3B4656)},
    {"ALARM", Colour::Hex(0xE5484D)},
    {"cooling", Colour::Hex(0x3B82F6)},
}};

/// The four directions in the order of a cell's sums, with the colour of motion that way.
struct Direction {
  const char* name;
  double x;
  double y;
  Colour colour;
};
inline constexpr std::array<Direction, 4> kDirections = {{
    {"down", 0, 1, Colour::Hex(0xFF7BAC)},
    {"right", 1, 0, Colour::Hex(0xFFD166)},
    {"up", 0, -1, Colour::Hex(0x4DE1C1)},
    {"left", -1, 0, Colour::Hex(0x7FA6FF)},
}};

}  // namespace stopngo::style

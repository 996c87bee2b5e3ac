// style.h: the colours of the overlay, each with one meaning.
#pragma once

#include <array>

#include "draw/canvas.h"

namespace stopngo::style {

inline constexpr Colour kPanel = Colour::Hex(0x11151C, 0.84);
inline constexpr Colour kTrack = Colour::Hex(0xFFFFFF, 0.14);  ///< the empty part of a bar, rules
inline constexpr Colour kText = Colour::Hex(0xF3F5F8);
inline constexpr Colour kMuted = Colour::Hex(0xA9B2C0);
inline constexpr Colour kBelow = Colour::Hex(0xC9D1DC);  ///< scores up to the threshold
inline constexpr Colour kAbove = Colour::Hex(0xFFB454);  ///< scores above it, and the counter they feed

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

// sheets.h: what tests of painting draw on, and what they see of it.
#pragma once

#include <vector>

#include "scene/paint/sheet.h"
#include "scene/space/camera.h"

namespace stopngo::test {

inline constexpr int kWidth = 400;
inline constexpr int kHeight = 240;

/// Of a picture of that size.
Camera TestCamera();

/// What a sheet makes of light.
std::vector<float> Laid(const Sheet& sheet, float light);

/// Where the covered part of a picture lies, and how many pixels it covers.
struct Cover {
  double pixels = 0;
  double column = 0;
  double row = 0;
};

Cover CoverOf(const Sheet& sheet);

}  // namespace stopngo::test

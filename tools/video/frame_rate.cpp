// frame_rate.cpp: frames a second as files keep them.
#include "video/frame_rate.h"

#include <algorithm>
#include <cmath>

namespace stopngo {

FrameRate RationalRate(double fps) {
  fps = std::clamp(fps, 1e-3, 1e6);  // what the numbers below can tell
  // The rates of television in the countries of NTSC, which everybody writes with two or three decimals.
  for (const int nominal : {24, 30, 48, 60, 120}) {
    if (std::fabs(fps - nominal * 1000 / 1001.0) < 0.005) return {nominal * 1000, 1001};
  }
  FrameRate best;
  double least = 1;
  for (int denominator = 1; denominator <= 1001; denominator++) {
    const auto numerator = static_cast<int>(std::lround(fps * denominator));
    const double error = std::fabs(static_cast<double>(numerator) / denominator - fps);
    if (numerator > 0 && error < least) {
      best = {numerator, denominator};
      least = error;
    }
    if (least < 1e-9 * fps) break;
  }
  return best;
}

}  // namespace stopngo

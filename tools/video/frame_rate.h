// frame_rate.h: frames a second as files keep them.
#pragma once

namespace stopngo {

struct FrameRate {
  int numerator = 0;
  int denominator = 1;
};

/// The ratio that is meant by a decimal number: 29.97 is 30000/1001, 12.5 is 25/2.
FrameRate RationalRate(double fps);

}  // namespace stopngo

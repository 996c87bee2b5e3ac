// stroke_test.cpp: lines and limbs of any thickness.
#include "scene/paint/stroke.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "scene/paint/sheet.h"
#include "sheets.h"

namespace stopngo::test {
namespace {

TEST(Stroke, ThinLimbsKeepTheirLight) {
  for (const double radius : {0.1, 0.4, 2.0}) {
    for (const double shift : {0.0, 0.17, 0.5, 0.81}) {
      Sheet sheet(60, 60);
      DrawLimb({20 + shift, 10, radius}, {20 + shift, 50, radius}, {0}, sheet);
      const Cover cover = CoverOf(sheet);
      EXPECT_NEAR(cover.pixels, 80 * radius, 0.08 * 80 * radius + 8 * radius * radius)
          << radius << " " << shift;
      // What is thinner than a pixel and inside of one shows as that pixel, as on a sensor.
      EXPECT_NEAR(cover.column, 20 + shift, std::max(0.06, 0.5 - radius));
    }
  }
}

}  // namespace
}  // namespace stopngo::test

// box_test.cpp: vehicles in traffic lie where they drive.
#include <gtest/gtest.h>

#include "base/random.h"
#include "scene/actors/box_vehicle.h"
#include "scene/paint/sheet.h"
#include "sheets.h"

namespace stopngo::test {
namespace {

TEST(BoxVehicle, IsSeenWhereItDrives) {
  Random random(3, 0);
  const BoxVehicle car(BoxKind::kHatchback, 60, random);
  const Camera camera = TestCamera();
  const auto draw = [&](double x) {
    Sheet sheet(kWidth, kHeight);
    car.Draw({x, 12, 0, 1}, x, {}, camera, {}, sheet);
    return CoverOf(sheet);
  };
  // Its flank is nearer than its middle by half of its width, the rest is up to a sixth farther.
  const double scale = camera.focal / (12 - car.HalfWidth());
  const Cover first = draw(-1);
  for (int step = 1; step <= 12; step++) {
    const double x = -1 + 0.01 * step;
    EXPECT_NEAR(draw(x).column - first.column, 0.01 * step * scale, 0.01 + 0.03 * 0.01 * step * scale);
  }
}

}  // namespace
}  // namespace stopngo::test

// vehicle_test.cpp: vehicles lie where they drive, and look one size from every side.
#include "scene/vehicle/vehicle.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/common/exact_math.h"
#include "scene/paint/sheet.h"
#include "scene/vehicle/driven_vehicle.h"
#include "sheets.h"

namespace stopngo::test {
namespace {

VehicleOptions Hatchback() {
  VehicleOptions options;
  options.kind = VehicleKind::kHatchback;
  return options;
}

Cover Drawn(const Vehicle& vehicle, const Pose& pose) {
  VehicleState state;
  state.pose = pose;
  Sheet sheet(kWidth, kHeight);
  vehicle.DrawBody(state, TestCamera(), {}, sheet);
  return CoverOf(sheet);
}

TEST(Vehicle, IsSeenWhereItDrives) {
  const Vehicle car(Hatchback(), {60}, 3);
  const auto draw = [&](double x) { return Drawn(car, {x, 12, 0, 1}); };
  // Its flank is nearer than its middle by half of its width, the rest is up to a sixth farther.
  const double scale = TestCamera().focal / (12 - car.HalfWidth());
  const Cover first = draw(-1);
  for (int step = 1; step <= 12; step++) {
    const double x = -1 + 0.01 * step;
    EXPECT_NEAR(draw(x).column - first.column, 0.01 * step * scale, 0.01 + 0.03 * 0.01 * step * scale);
  }
}

// Rear and flanks are painted in two ways: turned slowly around, nothing of it may come or go at once.
TEST(Vehicle, LooksOneSizeFromEverySide) {
  const Vehicle car(Hatchback(), {60}, 3);
  double before = 0;
  for (int step = 0; step <= 100; step++) {
    const double turns = 0.01 * step;
    const double pixels = Drawn(car, {0.5, 12, SineOfTurns(turns + 0.25), SineOfTurns(turns)}).pixels;
    EXPECT_GT(pixels, 400) << turns;
    EXPECT_TRUE(step == 0 || std::fabs(pixels - before) < 0.15 * before)
        << turns << ": " << before << ", " << pixels;
    before = pixels;
  }
}

// A picture of what rests is kept: it may rest only while nothing of it but lamps changes.
TEST(DrivenVehicle, RestsUntilItsFirstChange) {
  VehicleOptions options = Hatchback();
  options.heading = 0.02;
  options.boot_s = 3;
  LeaveAt(options, 5, 1);
  const DrivenVehicle vehicle(options, {60}, 1);
  EXPECT_TRUE(vehicle.Rests(2.9));
  EXPECT_FALSE(vehicle.Rests(3.1)) << "its boot opens";
  EXPECT_FALSE(vehicle.Rests(6)) << "it leaves";
  const Pose before = vehicle.RearAt(0).pose;
  EXPECT_NEAR(before.x, options.offset_m, 1e-9);
  EXPECT_NEAR(before.z, options.distance_m, 1e-9);
  const Pose later = vehicle.RearAt(8).pose;
  const double driven = std::hypot(later.x - before.x, later.z - before.z);
  EXPECT_NEAR(later.x - before.x, driven * SineOfTurns(0.02), 1e-4) << "along its heading";
}

}  // namespace
}  // namespace stopngo::test

// sensor_test.cpp: what the sensor makes of light: noise, exposure, shutter.
#include "scene/lens/sensor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "pictures.h"

namespace stopngo::test {
namespace {

TEST(Sensor, SensorNoiseIsAsStrongAsAsked) {
  SceneOptions options = Quiet(5);
  const Luma exact = Rendered(options, 0);
  options.sensor.noise = 4;
  const Luma noisy = Rendered(options, 0);
  double sum = 0;
  double squares = 0;
  int count = 0;
  for (std::size_t i = 0; i < exact.size(); i++) {
    if (std::abs(exact[i] - 110) > 10) continue;
    sum += noisy[i] - exact[i];
    squares += (noisy[i] - exact[i]) * (noisy[i] - exact[i]);
    count++;
  }
  ASSERT_GT(count, 1000);
  EXPECT_NEAR(sum / count, 0, 0.15);
  EXPECT_NEAR(std::sqrt(squares / count), 4, 0.3);
}

TEST(Sensor, ExposureChangesMultiply) {
  SensorOptions options;
  options.gain = 0.8;
  options.exposure = {{2, 1, 1.5}, {5, 0, 0.5}};
  const Sensor sensor(options, {0, 0, 8, 8, 8, 8}, 1);
  EXPECT_DOUBLE_EQ(sensor.Gain(0), 0.8);
  EXPECT_DOUBLE_EQ(sensor.Gain(2.5), 0.8 * 1.25);
  EXPECT_DOUBLE_EQ(sensor.Gain(4), 0.8 * 1.5);
  EXPECT_DOUBLE_EQ(sensor.Gain(6), 0.8 * 1.5 * 0.5);
}

// A shutter of 16 ms, a frame in every 16 ms: each is the mean of two of another camera that takes one every
// 4 ms, in which hardly anything moves.
TEST(Sensor, ShutterSmearsWhatMoves) {
  SceneOptions options = Quiet(1);
  options.actors = {{ActorKind::kCrossingNear, 1, 4}};
  options.fps = 62.5;
  options.sensor.shutter_s = 0.016;
  SceneOptions quick = options;
  quick.fps = 250;
  quick.sensor.shutter_s = 1e-4;
  Scene smeared(options);
  Scene sharp(quick);
  int moved = 0;  // by how many grey levels at an edge
  for (std::int64_t frame = 180; frame < 320; frame += 4) {
    const Luma picture = Rendered(smeared, options, frame);
    const Luma early = Rendered(sharp, quick, 4 * frame - 1);
    const Luma late = Rendered(sharp, quick, 4 * frame + 1);
    for (std::size_t i = 0; i < picture.size(); i++) {
      ASSERT_NEAR(picture[i], 0.5 * (early[i] + late[i]), 1);
      moved = std::max(moved, std::abs(early[i] - late[i]));
    }
  }
  EXPECT_GT(moved, 10);
}

}  // namespace
}  // namespace stopngo::test

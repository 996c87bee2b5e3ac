// coder_test.cpp: the marks of compression.
#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "pictures.h"

namespace stopngo::test {
namespace {

// A coder keeps what hardly changes: in a still picture that hisses most pixels are those of before, and
// the hiss is gone from what it keeps; what truly changes comes through.
TEST(Coder, CompressionFreezesWhatStands) {
  SceneOptions options = Quiet(4);
  options.sensor.noise = 1.5;
  options.sensor.compression = 0.6;
  options.sensor.refresh_s = 100;
  Scene scene(options);
  const Luma first = Rendered(scene, options, 0);
  const Luma second = Rendered(scene, options, 1);
  const auto same = std::inner_product(first.begin(), first.end(), second.begin(), 0, std::plus<>(),
                                       [](int a, int b) { return a == b ? 1 : 0; });
  EXPECT_GT(same, 0.9 * static_cast<double>(first.size()));
  options.sensor.compression = 0;
  options.sensor.noise = 0;
  const Luma exact = Rendered(options, 0);
  EXPECT_LT(MeanDifference(first, exact), 5);
  EXPECT_GT(MeanDifference(first, exact), 0.2);
  const Luma later = Rendered(scene, options, 110);
  EXPECT_LT(MeanDifference(later, Rendered(options, 110)), 5);
}

}  // namespace
}  // namespace stopngo::test

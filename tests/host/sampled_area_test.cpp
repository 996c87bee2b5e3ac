// sampled_area_test.cpp: which part of a frame the module looks at.
#include "host/sampled_area.h"

#include <gtest/gtest.h>

#include "host/module/module.h"
#include "host/settings/settings.h"

namespace stopngo::test {
namespace {

// The zoom halves the region to 110 × 70, off centre; a 1920 wide frame is sampled in steps of 2.5 and
// 2.25; a scale of 3 has no pattern and samples nothing.
TEST(SampledArea, TheModuleTellsWhereItLooks) {
  const Module module(STOPNGO_MODULE_FILE);
  Settings settings;
  settings.roi_y = 200;
  settings.scale = 5;
  const FrameFormat working{800, 480, 25};
  const SampledArea zoomed = ProbeSampledArea(module, settings, working);
  EXPECT_EQ(zoomed.left, 345);
  EXPECT_EQ(zoomed.top, 246);
  EXPECT_NEAR(zoomed.step_x * 220, 110, 1);
  EXPECT_NEAR(zoomed.step_y * 140, 70, 1);

  settings.scale = 0;
  const FrameFormat original{1920, 1080, 25};
  const SampledArea large = ProbeSampledArea(module, settings, original);
  EXPECT_EQ(large.left, 696);
  EXPECT_EQ(large.top, 450);
  EXPECT_NEAR(large.step_x * 220, 550, 3);
  EXPECT_NEAR(large.step_y * 140, 315, 3);

  settings.scale = 3;
  EXPECT_FALSE(ProbeSampledArea(module, settings, working).Valid());
}

}  // namespace
}  // namespace stopngo::test

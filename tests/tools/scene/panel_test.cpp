// panel_test.cpp: flat surfaces in the street, drawn from any side.
#include "scene/paint/panel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "scene/paint/sheet.h"
#include "scene/paint/texture.h"
#include "sheets.h"

namespace stopngo::test {
namespace {

/// A texture with a shape that is not symmetrical.
Texture Wedge() {
  Texture texture(1.1, 1.2, 90);
  const std::vector<PaintPoint> corners{{-1, 0.1}, {1, 0.1}, {0.5, 1.1}, {-0.9, 0.7}};
  texture.FillPolygon(corners, 100, 200);
  texture.Seal();
  return texture;
}

class PanelTest : public testing::TestWithParam<double> {};

// Faces the camera exactly, nearly, and from aside.
TEST_P(PanelTest, MovesByFractionsOfAPixelWithoutFlicker) {
  const Texture texture = Wedge();
  const double sine = GetParam();
  const double cosine = std::sqrt(1 - sine * sine);
  constexpr double kAway_m = 8;
  const auto draw = [&](double step) {
    // Moving the camera's centre moves the picture, and nothing else.
    Camera camera = TestCamera();
    camera.centre_x += 0.13 * step;
    camera.horizon += 0.07 * step;
    Sheet sheet(kWidth, kHeight);
    DrawPanel({texture, {0.3, 0.2, kAway_m}, {cosine, 0, sine}, {0, 1, 0}}, camera, {}, sheet);
    return CoverOf(sheet);
  };
  const Cover first = draw(0);
  EXPECT_GT(first.pixels, 500);
  for (int step = 1; step <= 20; step++) {
    const Cover moved = draw(step);
    EXPECT_NEAR(moved.pixels, first.pixels, 0.002 * first.pixels);
    EXPECT_NEAR(moved.column - first.column, 0.13 * step, 0.01);
    EXPECT_NEAR(moved.row - first.row, 0.07 * step, 0.01);
  }
}

INSTANTIATE_TEST_SUITE_P(Scene, PanelTest, testing::Values(0.0, 0.001, 0.6, -0.9));

TEST(PanelDrawing, BothWaysOfDrawingAgree) {
  const Texture texture = Wedge();
  const Camera camera = TestCamera();
  Sheet facing(kWidth, kHeight);
  Sheet slanted(kWidth, kHeight);
  for (const double mirrored : {1.0, -1.0}) {
    DrawPanel({texture, {-0.7, 0, 6}, {mirrored, 0, 0}, {0, 1, 0}}, camera, {}, facing);
    DrawPanel({texture, {-0.7, 0, 6}, {mirrored, 0, 1e-9}, {0, 1, 0}}, camera, {}, slanted);
    const auto expected = Laid(facing, 50);
    const auto drawn = Laid(slanted, 50);
    for (std::size_t i = 0; i < drawn.size(); i++) {
      ASSERT_NEAR(drawn[i], expected[i], 0.01) << i;
    }
  }
}

TEST(PanelDrawing, MayReachBehindTheCamera) {
  const Texture texture = Wedge();
  const Camera camera = TestCamera();
  Sheet sheet(kWidth, kHeight);
  // A long wall on the left that begins behind us, and the road beneath.
  DrawPanel({texture, {-1.5, 0, 2}, {0, 0, 20}, {0, 3, 0}}, camera, {}, sheet);
  const Cover cover = CoverOf(sheet);
  EXPECT_GT(cover.pixels, 1000);
  EXPECT_LT(cover.column, kWidth / 2.0);
  for (const float value : Laid(sheet, 10)) {
    ASSERT_TRUE(std::isfinite(value));
  }
}

}  // namespace
}  // namespace stopngo::test

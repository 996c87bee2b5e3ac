// network_picture_test.cpp: where a weight shows in the picture of its network.
#include "evaluate/network_picture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "classify.h"
#include "host/common/failure.h"
#include "host/draw/canvas.h"
#include "host/settings/weights_file.h"
#include "support/forgotten_fonts.h"

namespace stopngo::test {
namespace {

// A node that only motion to the right in one cell raises shows in that cell's right-hand triangle alone.
TEST(NetworkPicture, ShowsAWeightWhereItsCellIs) {
  Network network{160, 16, std::vector<float>(NetworkLength(160, 16))};
  network.numbers[160 * 5 + 80 + 4 * 7 + 1] = 3;  // node 5, current frame, cell 7, right
  network.numbers[161 * 16 + 5] = 2;              // its output weight, so that it comes first
  const Canvas picture = DrawNetwork(network, 5);
  // Where the first panel's cells are; titles and legend have the colour, too.
  int found = 0;
  for (int y = 122; y < 250; ++y) {
    for (int x = 30; x < 362; ++x) {
      const std::uint8_t* const pixel =
          &picture.Pixels()[4 * (static_cast<std::size_t>(y) * picture.Width() + x)];
      if (pixel[2] < 200 || pixel[0] > 120) continue;
      ++found;
      // The right part of the cell in the second row and the third column of the right grid.
      EXPECT_TRUE(x > 282 && x < 298 && y > 154 && y < 186) << x << ' ' << y;
    }
  }
  EXPECT_GT(found, 20);
  EXPECT_THROW(DrawNetwork(network, 3), Failure) << "20 cells are no rows of three";
}

}  // namespace
}  // namespace stopngo::test

// network_figures_test.cpp: what a network's nodes can do.
#include "evaluate/network_figures.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <vector>

#include "classify.h"
#include "host/settings/weights_file.h"

namespace stopngo::test {
namespace {

constexpr std::size_t kInputs = 16;  // two cells a frame

TEST(NetworkFigures, SumsStayWithinWhatACellCanShow) {
  Network network{kInputs, 1, std::vector<float>(NetworkLength(kInputs, 1))};
  // Up and down share a cell's vectors: the stronger of the two counts, not both.
  network.numbers[0] = 4;
  network.numbers[2] = 6;
  network.numbers[9] = -2;   // current frame, cell 0, right
  network.numbers[15] = -1;  // current frame, cell 1, left
  network.numbers[16] = 0.5F;
  const NodeFigures node = NodesOf(network).front();
  EXPECT_DOUBLE_EQ(node.greatest_sum, 0.5 + 6 * 84.0 / 128);
  EXPECT_DOUBLE_EQ(node.least_sum, 0.5 - 3 * 84.0 / 128);
  EXPECT_FALSE(node.CanSaturate());
  EXPECT_EQ(node.strongest[0].weight, 6);
  EXPECT_EQ(node.strongest[2].weight, -2);
  EXPECT_TRUE(node.strongest[2].current);
  EXPECT_EQ(node.strongest[2].direction, 1U);
  network.numbers[2] = 12;
  EXPECT_TRUE(NodesOf(network).front().CanSaturate());
}

}  // namespace
}  // namespace stopngo::test

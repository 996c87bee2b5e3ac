// network_figures.h: what the numbers of a weights file look like.
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "host/settings/weights_file.h"

namespace stopngo {

/// One of the four runs of numbers in a file.
struct LayerFigures {
  const char* name = "";
  std::size_t count = 0;
  std::size_t not_finite = 0;  ///< left out of all that follows
  float least = std::numeric_limits<float>::infinity();
  float greatest = -std::numeric_limits<float>::infinity();
  double mean_magnitude = 0;
  std::size_t near_zero = 0;  ///< too small to move a sum by a step of the activation table
};

/// A weight of a hidden node by where it looks.
struct StrongWeight {
  bool current = false;  ///< the current frame's features, else those of the frame before
  std::size_t cell = 0;
  std::size_t direction = 0;  ///< down, right, up, left
  float weight = 0;
};

struct NodeFigures {
  std::size_t index = 0;
  float bias = 0;
  float output_weight = 0;
  /// What the node's sum can be with histograms that can occur.
  double least_sum = 0;
  double greatest_sum = 0;
  std::array<StrongWeight, 3> strongest;  ///< by magnitude; some of weight 0 where there are fewer inputs

  /// Whether the sum can pass the end of the activation table, beyond which it is flat.
  [[nodiscard]] bool CanSaturate() const;
};

std::array<LayerFigures, 4> LayersOf(const Network& network);

/// Sorted by output weight, from what raises the score most to what lowers it most.
std::vector<NodeFigures> NodesOf(const Network& network);

}  // namespace stopngo

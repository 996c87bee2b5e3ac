// network_figures.cpp: what the numbers of a weights file look like.
#include "evaluate/network_figures.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace stopngo {
namespace {

// Twelve vectors of at most 7 pixels, divided by 128.
constexpr double kLargestFeature = 84.0 / 128;
// The activation table has a step each 1/128 and 1,024 of them.
constexpr double kTableStep = 1.0 / 128;
constexpr double kTableEnd = 1023 * kTableStep;
constexpr std::size_t kDirections = 4;

LayerFigures FiguresOf(const char* name, std::span<const float> numbers, double largest_factor) {
  LayerFigures figures;
  figures.name = name;
  figures.count = numbers.size();
  for (const float number : numbers) {
    if (!std::isfinite(number)) {
      ++figures.not_finite;
      continue;
    }
    figures.least = std::min(figures.least, number);
    figures.greatest = std::max(figures.greatest, number);
    figures.mean_magnitude += std::abs(double{number});
    if (std::abs(number) * largest_factor < kTableStep) ++figures.near_zero;
  }
  const std::size_t finite = figures.count - figures.not_finite;
  if (finite > 0) figures.mean_magnitude /= static_cast<double>(finite);
  return figures;
}

/// Adds what a cell's opposite directions can give: they share the cell's vectors, so that of both
/// together no more than one largest feature can be there.
void AddOpposites(NodeFigures& node, double one, double other) {
  node.least_sum += kLargestFeature * std::min({one, other, 0.0});
  node.greatest_sum += kLargestFeature * std::max({one, other, 0.0});
}

void AddFrame(NodeFigures& node, std::span<const float> weights) {
  const auto weight = [&](std::size_t i) { return i < weights.size() ? double{weights[i]} : 0.0; };
  for (std::size_t cell = 0; cell < weights.size(); cell += kDirections) {
    AddOpposites(node, weight(cell), weight(cell + 2));
    AddOpposites(node, weight(cell + 1), weight(cell + 3));
  }
}

void FindStrongest(NodeFigures& node, std::span<const float> weights) {
  const std::size_t half = weights.size() / 2;
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const std::size_t feature = i < half ? i : i - half;
    StrongWeight found{i >= half, feature / kDirections, feature % kDirections, weights[i]};
    for (StrongWeight& place : node.strongest) {
      if (std::abs(found.weight) > std::abs(place.weight)) std::swap(found, place);
    }
  }
}

}  // namespace

bool NodeFigures::CanSaturate() const { return least_sum < -kTableEnd || greatest_sum > kTableEnd; }

std::array<LayerFigures, 4> LayersOf(const Network& network) {
  const std::span<const float> numbers = network.numbers;
  return {FiguresOf("hidden weights", network.HiddenWeights(), kLargestFeature),
          FiguresOf("hidden biases", network.HiddenBiases(), 1),
          FiguresOf("output weights", network.OutputWeights(), 1),
          FiguresOf("output bias", numbers.last(1), 1)};
}

std::vector<NodeFigures> NodesOf(const Network& network) {
  std::vector<NodeFigures> nodes;
  const std::size_t half = network.inputs / 2;
  for (std::size_t i = 0; i < network.hiddens; ++i) {
    NodeFigures node;
    node.index = i;
    node.bias = network.HiddenBiases()[i];
    node.output_weight = network.OutputWeights()[i];
    node.least_sum = node.greatest_sum = node.bias;
    const std::span<const float> weights = network.HiddenWeights(i);
    AddFrame(node, weights.first(half));
    AddFrame(node, weights.subspan(half));
    FindStrongest(node, weights);
    nodes.push_back(node);
  }
  // Numbers that are none have no order: they go last, each in its place.
  const auto key = [](const NodeFigures& node) {
    return std::isnan(node.output_weight) ? -std::numeric_limits<float>::infinity() : node.output_weight;
  };
  std::stable_sort(nodes.begin(), nodes.end(),
                   [&](const NodeFigures& a, const NodeFigures& b) { return key(a) > key(b); });
  return nodes;
}

}  // namespace stopngo

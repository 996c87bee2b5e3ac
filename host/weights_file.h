// weights_file.h: a perceptron's weights, as numbers and as the file that the module loads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace stopngo {

/// A network in the file's order: a row of weights a hidden node, the hidden biases, a weight from each
/// hidden node to the output, the output's bias. Inputs are two frames' features, the previous one's first.
struct Network {
  std::size_t inputs = 0;
  std::size_t hiddens = 0;
  std::vector<float> numbers;  ///< NetworkLength(inputs, hiddens) of them

  [[nodiscard]] std::span<const float> HiddenWeights() const {
    return std::span(numbers).first(inputs * hiddens);
  }
  [[nodiscard]] std::span<const float> HiddenWeights(std::size_t node) const {
    return std::span(numbers).subspan(inputs * node, inputs);
  }
  [[nodiscard]] std::span<const float> HiddenBiases() const {
    return std::span(numbers).subspan(inputs * hiddens, hiddens);
  }
  [[nodiscard]] std::span<const float> OutputWeights() const {
    return std::span(numbers).subspan((inputs + 1) * hiddens, hiddens);
  }
  [[nodiscard]] float OutputBias() const { return numbers.back(); }
};

/// Throws Failure when the module has no room for such a network, or when the file is not exactly as long
/// as one. counts_from: where the user can look up or change the counts.
void CheckWeightsSize(const std::string& path, std::uint64_t inputs, std::uint64_t hiddens,
                      const std::string& counts_from);

/// Throws Failure, as above and when the file cannot be read.
Network ReadWeights(const std::string& path, std::size_t inputs, std::size_t hiddens,
                    const std::string& counts_from);

/// A weights file of the network.
std::string WeightsBytes(const Network& network);

}  // namespace stopngo

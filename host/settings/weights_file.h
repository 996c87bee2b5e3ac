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

/// What makes a network useless whatever it is shown: a number that is not finite, or that no input reaches the
/// output. Empty: nothing.
std::string FaultOf(const Network& network);

/// Throws Failure when the module has no room for such a network, and when the file is none: not a regular file, not
/// exactly as long. counts_from: where the user can look up or change the counts.
Network ReadNumbers(const std::string& path, std::size_t inputs, std::size_t hiddens,
                    const std::string& counts_from);

/// The same for weights to work with: throws Failure also when the network has a fault.
Network ReadWeights(const std::string& path, std::size_t inputs, std::size_t hiddens,
                    const std::string& counts_from);

/// A weights file of the network.
std::string WeightsBytes(const Network& network);

}  // namespace stopngo

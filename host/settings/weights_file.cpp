// weights_file.cpp: a perceptron's weights, as numbers and as the file that the module loads.
#include "host/settings/weights_file.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string_view>

#include "classify.h"
#include "host/common/failure.h"
#include "host/common/file.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

// The file's numbers have their lowest byte first, whatever the machine has.
constexpr std::size_t kBytes = 4;

float NumberOf(std::string_view bytes) {
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < kBytes; ++i) {
    bits |= std::uint32_t{static_cast<std::uint8_t>(bytes[i])} << 8 * i;
  }
  return std::bit_cast<float>(bits);
}

/// A node counts when an input reaches it and it reaches the output: without one every score is the same, whatever is
/// seen. (Scores may come out the same for other reasons, too, which only the frames can tell.)
bool InputsReachTheOutput(const Network& network) {
  const auto is_set = [](float weight) { return weight != 0; };
  for (std::size_t node = 0; node < network.hiddens; ++node) {
    if (!is_set(network.OutputWeights()[node])) continue;
    if (std::ranges::any_of(network.HiddenWeights(node), is_set)) return true;
  }
  return false;
}

}  // namespace

std::string FaultOf(const Network& network) {
  const auto bad =
      std::ranges::find_if_not(network.numbers, [](float number) { return std::isfinite(number); });
  if (bad != network.numbers.end()) {
    return "number " + std::to_string(bad - network.numbers.begin()) + " of it is not finite";
  }
  return InputsReachTheOutput(network) ? "" : "no input reaches its output: every score would be the same";
}

Network ReadNumbers(const std::string& path, std::size_t inputs, std::size_t hiddens,
                    const std::string& counts_from) {
  const std::uint64_t numbers = NetworkLength(inputs, hiddens);
  const std::string network_text =
      std::to_string(inputs) + " inputs and " + std::to_string(hiddens) + " hidden nodes";
  const std::string see = " (see " + counts_from + ")";
  if (numbers > kWeightCapacity) {
    throw Failure(network_text + " need " + std::to_string(numbers) +
                      " weights, and the module has room for " + std::to_string(kWeightCapacity) + see,
                  ExitCode::kUsage);
  }
  const std::string kind = "a weights file for " + network_text;
  const std::string bytes = ReadFile(path, {kind, numbers * kBytes, false, see});
  if (bytes.size() != numbers * kBytes) {
    throw Failure(path + ": has " + std::to_string(bytes.size()) + " bytes, and " + kind + " " +
                  std::to_string(numbers * kBytes) + see);
  }
  Network network{inputs, hiddens, std::vector<float>(numbers)};
  for (std::size_t i = 0; i < network.numbers.size(); ++i) {
    network.numbers[i] = NumberOf(std::string_view(bytes).substr(i * kBytes, kBytes));
  }
  return network;
}

Network ReadWeights(const std::string& path, std::size_t inputs, std::size_t hiddens,
                    const std::string& counts_from) {
  Network network = ReadNumbers(path, inputs, hiddens, counts_from);
  const std::string fault = FaultOf(network);
  if (!fault.empty()) throw Failure((path + ": ").append(fault));
  return network;
}

std::string WeightsBytes(const Network& network) {
  std::string bytes;
  for (const float number : network.numbers) {
    const auto bits = std::bit_cast<std::uint32_t>(number);
    for (std::size_t i = 0; i < kBytes; ++i) bytes += static_cast<char>(bits >> 8 * i & 255);
  }
  return bytes;
}

}  // namespace stopngo

// weights_file.cpp: a perceptron's weights, as numbers and as the file that the module loads.
#include "host/weights_file.h"

#include <bit>
#include <filesystem>
#include <string_view>

#include "classify.h"
#include "host/failure.h"
#include "host/file.h"
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

}  // namespace

void CheckWeightsSize(const std::string& path, std::uint64_t inputs, std::uint64_t hiddens,
                      const std::string& counts_from) {
  const std::uint64_t numbers = NetworkLength(inputs, hiddens);
  const std::string network =
      std::to_string(inputs) + " inputs and " + std::to_string(hiddens) + " hidden nodes";
  const std::string see = " (see " + counts_from + ")";
  if (numbers > kWeightCapacity) {
    throw Failure(network + " need " + std::to_string(numbers) + " weights, and the module has room for " +
                      std::to_string(kWeightCapacity) + see,
                  ExitCode::kUsage);
  }
  std::error_code error;
  const std::uint64_t bytes = std::filesystem::file_size(path, error);
  if (error) throw Failure(path + ": " + error.message());
  if (bytes != numbers * kBytes) {
    throw Failure(path + ": a weights file for " + network + " has " + std::to_string(numbers * kBytes) +
                  " bytes, this file has " + std::to_string(bytes) + see);
  }
}

Network ReadWeights(const std::string& path, std::size_t inputs, std::size_t hiddens,
                    const std::string& counts_from) {
  CheckWeightsSize(path, inputs, hiddens, counts_from);
  const std::string bytes = ReadFile(path);
  Network network{inputs, hiddens, std::vector<float>(NetworkLength(inputs, hiddens))};
  // It may have grown or shrunk since it was measured.
  if (bytes.size() != network.numbers.size() * kBytes) throw Failure(path + ": changed while it was read");
  for (std::size_t i = 0; i < network.numbers.size(); ++i) {
    network.numbers[i] = NumberOf(std::string_view(bytes).substr(i * kBytes, kBytes));
  }
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

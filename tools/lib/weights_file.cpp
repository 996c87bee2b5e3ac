// weights_file.cpp: a perceptron's weights, as numbers and as the file that the module loads.
#include "weights_file.h"

#include <array>
#include <bit>
#include <filesystem>
#include <fstream>
#include <limits>

#include "failure.h"
#include "output_file.h"
#include "system_error.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

// The file's numbers have their lowest byte first, whatever the machine has.
constexpr std::size_t kBytes = 4;
using NumberBytes = std::array<char, kBytes>;

float NumberOf(const NumberBytes& bytes) {
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < kBytes; ++i)
    bits |= std::uint32_t{static_cast<std::uint8_t>(bytes[i])} << 8 * i;
  return std::bit_cast<float>(bits);
}

NumberBytes BytesOf(float number) {
  const auto bits = std::bit_cast<std::uint32_t>(number);
  NumberBytes bytes;
  for (std::size_t i = 0; i < kBytes; ++i) bytes[i] = static_cast<char>(bits >> 8 * i & 255);
  return bytes;
}

}  // namespace

std::uint64_t WeightCount(std::uint64_t inputs, std::uint64_t hiddens) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  if (inputs > kMost - 2 || hiddens > (kMost - 1) / (inputs + 2)) return kMost;
  return (inputs + 2) * hiddens + 1;
}

void CheckWeightsSize(const std::string& path, std::uint64_t inputs, std::uint64_t hiddens,
                      const std::string& counts_from) {
  const std::uint64_t numbers = WeightCount(inputs, hiddens);
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
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  Network network{inputs, hiddens, std::vector<float>(WeightCount(inputs, hiddens))};
  for (float& number : network.numbers) {
    NumberBytes bytes{};
    file.read(bytes.data(), bytes.size());
    number = NumberOf(bytes);
  }
  if (!file) throw Failure(path + ": " + LastSystemError());
  return network;
}

void WriteWeights(const std::string& path, const Network& network) {
  OutputFile file(path);
  for (const float number : network.numbers) {
    const NumberBytes bytes = BytesOf(number);
    file.Stream().write(bytes.data(), bytes.size());
  }
  file.Commit();
}

}  // namespace stopngo

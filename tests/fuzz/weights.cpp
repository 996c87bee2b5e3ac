// weights.cpp: fuzz target: any bytes as a weights file. Host and module read the same numbers or none, and every
// score of theirs is a score.
//
// Input: a byte each for inputs and hidden nodes, then the file.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "classify.h"
#include "host/settings/weights_file.h"
#include "reading.h"
#include "vel_stopngo.h"
#include "vel_stopngo_ctx.h"

namespace {

/// The last two are refused: more than there is room for, and a product that passes 64 bits.
constexpr std::uint64_t kCounts[] = {0, 1, 2, 3, 8, 16, 160, 1300, 2600, ~std::uint64_t{0}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::uint64_t inputs = kCounts[input.Below(std::size(kCounts))];
  const std::uint64_t hiddens = kCounts[input.Below(std::size(kCounts))];
  const std::string bytes(input.Rest());
  const std::string path = fuzz::Folder().File("w.bin", bytes);
  const std::uint64_t length = NetworkLength(inputs, hiddens);

  stopngo::Network network;
  const bool taken = fuzz::ReadOrRefuse(length > kWeightCapacity ? "inputs" : path, [&] {
    network = stopngo::ReadNumbers(path, inputs, hiddens, "the settings");
  });
  // Exactly as large as the network.
  std::vector<float> weight(length <= kWeightCapacity ? length : 0);
  const int loaded = Classify_Load_(path.c_str(), weight.data(), static_cast<std::uint32_t>(inputs),
                                    static_cast<std::uint32_t>(hiddens));
  // The module takes the start of a longer file.
  fuzz::Expect(!taken || loaded == 0, "the module refuses weights that the host takes");
  fuzz::Expect(taken || loaded != 0 || bytes.size() > 4 * length,
               "the host refuses weights of the right size");
  if (!taken) return 0;

  fuzz::Expect(stopngo::WeightsBytes(network) == bytes, "weights are written otherwise than they were read");
  fuzz::Expect(std::memcmp(weight.data(), network.numbers.data(), bytes.size()) == 0,
               "host and module read different numbers");
  (void)stopngo::FaultOf(network);
  // Without hidden nodes any number of inputs is taken, and none is read.
  const std::vector<float> features(hiddens == 0 ? 1 : std::max<std::size_t>(inputs, 1), 0.5F);
  const float score = Classify_Feature_(features.data(), weight.data(), static_cast<std::uint32_t>(inputs),
                                        static_cast<std::uint32_t>(hiddens));
  fuzz::Expect(score >= 0.000337958F && score <= 0.999662043F, "a score of " + std::to_string(score));
  return 0;
}

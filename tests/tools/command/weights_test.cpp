// weights_test.cpp: stopngo weights: what it shows of a file, and what it finds wrong.
#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "base/output_file.h"
#include "classify.h"
#include "host/common/sha256.h"
#include "host/settings/sidecar.h"
#include "host/settings/weights_file.h"
#include "program.h"
#include "support/failure_text.h"

namespace stopngo::test {
namespace {

// Two cells a frame and three hidden nodes.
constexpr std::size_t kInputs = 16;
constexpr std::size_t kHiddens = 3;

Network SmallNetwork() {
  Network network{kInputs, kHiddens, std::vector<float>(NetworkLength(kInputs, kHiddens))};
  for (std::size_t i = 0; i < network.numbers.size(); ++i) {
    network.numbers[i] = static_cast<float>(static_cast<int>(i * 37 % 19) - 9) / 8;
  }
  return network;
}

TEST(WeightsCommand, ShowsAndChecks) {
  const TemporaryFolder folder;
  const std::string path = folder / "small.bin";
  Network network = SmallNetwork();
  WriteFile(path, WeightsBytes(network));
  const std::string counts = " --inputs 16 --hiddens 3 --columns 2 ";
  const CommandResult plain = Stopngo("weights " + path + counts);
  EXPECT_EQ(plain.exit_code, 0) << plain.err;
  ExpectWords(plain.out,
              {"16 inputs, 3 hidden nodes, 55 numbers, 220 bytes", Sha256(ReadFile(path)), ": none"});

  WriteFile(SidecarPath(path), SidecarText({kInputs, kHiddens, Sha256(ReadFile(path)), {}}));
  const CommandResult matching = Stopngo("weights " + path + " --columns 2 --json");
  const auto json = nlohmann::json::parse(matching.out);
  EXPECT_EQ(json.at("sidecar"), "matches");
  ASSERT_EQ(json.at("nodes").size(), kHiddens);
  EXPECT_GE(json.at("nodes")[0].at("output_weight"), json.at("nodes")[1].at("output_weight"));

  network.numbers[50] = std::numeric_limits<float>::quiet_NaN();
  WriteFile(path, WeightsBytes(network));
  const CommandResult broken = Stopngo("weights " + path);
  EXPECT_EQ(broken.exit_code, 1);
  ExpectWords(broken.err, {"not finite: 1 among the hidden biases", "SHA-256"});
  ExpectWords(broken.out, {": differs"});
  EXPECT_EQ(Stopngo("weights " + path + " --hiddens 2").exit_code, 1);
  EXPECT_EQ(Stopngo("weights " + folder / "gone.bin").exit_code, 1);
  const std::string png = folder / "w.png";
  EXPECT_EQ(Stopngo("weights " + path + counts + "--picture " + png).exit_code, 1)
      << "not a number is not drawn";
  network.numbers[50] = 0;
  WriteFile(path, WeightsBytes(network));
  WriteFile(SidecarPath(path), SidecarText({kInputs, kHiddens, Sha256(ReadFile(path)), {}}));
  EXPECT_EQ(Stopngo("weights " + path + " --columns 2 --picture " + png).exit_code, 0);
  EXPECT_EQ(ReadFile(png).substr(1, 3), "PNG");
  EXPECT_EQ(Stopngo("weights " + path + " --columns 3 --picture " + png).exit_code, 2);
}

}  // namespace
}  // namespace stopngo::test

// weights_file_test.cpp: the layout of weights files, and files of the wrong size.
#include "host/settings/weights_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "classify.h"
#include "host/common/failure.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

// Two cells a frame and three hidden nodes.
constexpr std::size_t kInputs = 16;
constexpr std::size_t kHiddens = 3;

TEST(WeightsFile, HasTheLayoutThatTheModuleReads) {
  const TemporaryFolder folder;
  Network network{kInputs, kHiddens, std::vector<float>(NetworkLength(kInputs, kHiddens))};
  for (std::size_t i = 0; i < network.numbers.size(); ++i) {
    network.numbers[i] = static_cast<float>(static_cast<int>(i * 37 % 19) - 9) / 8;
  }
  network.numbers[0] = 1.5F;
  const std::string path = folder.File("w.bin", WeightsBytes(network));
  // 1.5 is 0x3FC00000, its lowest byte first.
  EXPECT_EQ(ReadFile(path).substr(0, 4), std::string("\0\0\xC0\x3F", 4));
  const Network read = ReadWeights(path, kInputs, kHiddens, "here");
  EXPECT_EQ(read.numbers, network.numbers);
  EXPECT_EQ(read.HiddenWeights(2).data(), read.numbers.data() + 32);
  EXPECT_EQ(read.HiddenBiases().data(), read.numbers.data() + 48);
  EXPECT_EQ(read.OutputWeights().data(), read.numbers.data() + 51);
  EXPECT_EQ(read.OutputBias(), read.numbers[54]);
  // Counts whose product passes 64 bits are refused, not wrapped around to few.
  constexpr std::uint64_t kMany = (std::uint64_t{1} << 33) - 2;
  EXPECT_EQ(NetworkLength(kMany, std::uint64_t{1} << 31), std::numeric_limits<std::uint64_t>::max());
  ExpectWords(FailureOf([&] { ReadWeights(path, kMany, std::uint64_t{1} << 31, "x"); }), {"2600"});
}

TEST(WeightsFile, OnlyTheExactSizeIsTaken) {
  const TemporaryFolder folder;
  const std::uint64_t counts[] = {0, 1, 16, 160, 161, 65536, 1ULL << 32, ~0ULL};
  const std::string path = folder.File("w.bin", std::string(10372, '\x01'));
  int taken = 0;
  for (const std::uint64_t inputs : counts) {
    for (const std::uint64_t hiddens : counts) {
      try {
        (void)ReadWeights(path, inputs, hiddens, "--features");
        taken++;
      } catch (const Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("--features"), std::string::npos) << failure.what();
      }
    }
  }
  EXPECT_EQ(taken, 1) << "160 inputs and 16 hidden nodes fit, nothing else";
  ExpectWords(FailureOf([&] { (void)ReadWeights(folder / "gone.bin", 160, 16, ""); }),
              {"gone.bin", "No such file"});
}

/// Nothing of it 0.
Network Sample() { return {kInputs, kHiddens, std::vector<float>(NetworkLength(kInputs, kHiddens), 0.5F)}; }

TEST(WeightsFile, NumbersThatAreNoneAreRefused) {
  const TemporaryFolder folder;
  for (const float bad : {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                          std::numeric_limits<float>::quiet_NaN()}) {
    for (const std::size_t place : {0, 47, 48, 51, 54}) {
      Network network = Sample();
      network.numbers[place] = bad;
      const std::string path = folder.File("w.bin", WeightsBytes(network));
      ExpectWords(FailureOf([&] { (void)ReadWeights(path, kInputs, kHiddens, "x"); }),
                  {"w.bin", "number " + std::to_string(place) + " "});
    }
  }
}

TEST(WeightsFile, NetworksThatNoInputCanMoveAreRefused) {
  const TemporaryFolder folder;
  const auto fault = [&](const Network& network) {
    const std::string path = folder.File("w.bin", WeightsBytes(network));
    return FailureOf([&] { (void)ReadWeights(path, kInputs, kHiddens, "x"); });
  };
  EXPECT_EQ(fault(Sample()), "no failure");
  Network unread = Sample();
  std::fill_n(unread.numbers.begin(), kInputs * kHiddens, -0.0F);
  ExpectWords(fault(unread), {"w.bin", "same"});
  Network unheard = Sample();
  std::fill_n(unheard.numbers.begin() + (kInputs + 1) * kHiddens, kHiddens, 0.0F);
  ExpectWords(fault(unheard), {"w.bin", "same"});
  // Nodes 0 and 1 are not read, node 2 is not heard.
  Network mixed = Sample();
  std::fill_n(mixed.numbers.begin(), 2 * kInputs, 0.0F);
  mixed.numbers[(kInputs + 1) * kHiddens + 2] = 0;
  ExpectWords(fault(mixed), {"w.bin", "same"});
  mixed.numbers[kInputs] = 1e-30F;
  EXPECT_EQ(fault(mixed), "no failure");
}

TEST(WeightsFile, OnlyRegularFilesAreTakenAndNoneIsWaitedFor) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const auto& [path, word] :
       {std::pair{folder / "pipe", "a pipe, not a weights file"}, std::pair{folder / ".", "a folder, not"},
        std::pair<std::string, const char*>{"/dev/zero", "a device, not"}}) {
    ExpectWords(FailureOf([&file = path] { (void)ReadWeights(file, kInputs, kHiddens, "x"); }), {path, word});
  }
}

}  // namespace
}  // namespace stopngo::test

// golden_test.cpp: whole detectors against recorded traces, the same on every machine and kernel.
//
// A trace's line holds digests of the analysis buffers, of the vectors and of the scores' bit patterns, and
// the decisions as they follow one another. STOPNGO_GOLDEN_UPDATE=1 records them anew.
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "decide.h"
#include "detector.h"
#include "kernels/kernels.h"
#include "moving_picture.h"
#include "random.h"

namespace {

constexpr int kFrames = 60;

/// FNV-1a, 64 bits.
class Digest {
 public:
  void Add(const void* data, std::size_t size) {
    for (const auto* byte = static_cast<const std::uint8_t*>(data); size > 0; --size, ++byte) {
      value_ = (value_ ^ *byte) * 0x100000001B3U;
    }
  }
  [[nodiscard]] std::string Hex() const {
    std::ostringstream text;
    text << std::hex << value_;
    return text.str();
  }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325U;
};

struct Configuration {
  int original, scale, filter;
  [[nodiscard]] std::string Name() const {
    return std::to_string(original) + " scale " + std::to_string(scale) + " filter " + std::to_string(filter);
  }
};

std::vector<Configuration> Configurations() {
  std::vector<Configuration> all;
  for (const int filter : {0, 1, 2}) {
    for (const int scale : {0, 2, 4, 5, 6, 7, 8}) all.push_back({800, scale, filter});
    for (const int original : {1280, 1920}) {
      for (const int scale : {0, 2, 4, 6, 8}) all.push_back({original, scale, filter});
    }
  }
  return all;
}

/// Decisions as runs: "0x5 1x21 0x3".
void AppendRun(std::string& runs, int flag, int length) {
  if (length > 0) runs += (runs.empty() ? "" : " ") + std::to_string(flag) + "x" + std::to_string(length);
}

/// Weights whose scores lie on both sides of the threshold: strong inputs, and an output bias that takes
/// off what the hidden nodes give at rest, one half each.
void DrawWeights(VEL_STOPNGO_CTX& ctx, std::uint64_t seed) {
  test::Random random(seed);
  for (float& weight : ctx.Weight) weight = random.Signed() * 4;
  float* output = ctx.Weight + (ctx.Features_2 + 1) * ctx.Hiddens;
  output[ctx.Hiddens] = 0;
  for (DATA_32 node = 0; node < ctx.Hiddens; ++node) output[ctx.Hiddens] -= output[node] / 2;
}

struct Traced {
  std::string line;
  int scored = 0;
};

Traced Trace(const Configuration& configuration, std::uint64_t seed) {
  const int width = configuration.original;
  test::MovingPicture picture(width, width == 800 ? 480 : width * 9 / 16, seed);
  test::Detector detector;
  DrawWeights(*detector.Context(), seed);
  detector.Control(VEL_CTRL_STOPNGO_ROI_X, 290, VEL_CTRL_STOPNGO_ROI_Y, 170, VEL_CTRL_STOPNGO_SET_SCALE,
                   configuration.scale, VEL_CTRL_STOPNGO_SET_FILTER, configuration.filter,
                   VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, width, VEL_CTRL_STOPNGO_SET_TIME_BEEPING, 1,
                   VEL_CTRL_STOPNGO_SET_TIME_COOLING, 2, VEL_CTRL_STOPNGO_SET_TIME_LEAVING, 1);
  detector.Update();
  Digest pictures;
  Digest vectors;
  Digest scores;
  Traced traced;
  std::string runs;
  int flag = 0;
  int length = 0;
  for (int frame = 0; frame < kFrames; ++frame) {
    const bool analysed = frame > 0 && !InHold(*detector.Context());
    EXPECT_EQ(detector.Write(picture.Next().data()), 0);
    pictures.Add(frame == 0 ? detector->FrameOld : detector->FrameNew, 220 * 140);
    if (analysed) {
      const float score = Classify_Feature_(detector->Feature, detector->Weight, 160, 16);
      vectors.Add(detector->Motion, sizeof detector->Motion);
      scores.Add(&score, sizeof score);
      ++traced.scored;
    }
    if (detector->Flag != flag) {
      AppendRun(runs, flag, length);
      flag = detector->Flag;
      length = 0;
    }
    ++length;
  }
  AppendRun(runs, flag, length);
  traced.line = pictures.Hex() + "\t" + vectors.Hex() + "\t" + scores.Hex() + "\t" + runs;
  return traced;
}

std::map<std::string, std::string> Recorded() {
  std::map<std::string, std::string> traces;
  std::ifstream file(STOPNGO_GOLDEN);
  for (std::string line; std::getline(file, line);) {
    const std::size_t tab = line.find('\t');
    if (tab != std::string::npos) traces[line.substr(0, tab)] = line.substr(tab + 1);
  }
  return traces;
}

struct Tally {
  std::ostringstream lines;
  int alarms = 0;
  int scored = 0;
};

/// Makes every stride-th trace with table, and holds it to the recorded one.
Tally TraceAll(const KernelTable& table, std::size_t stride, bool compare) {
  SCOPED_TRACE(table.Name);
  ForceKernels(&table);
  std::map<std::string, std::string> recorded = Recorded();
  Tally tally;
  const std::vector<Configuration> all = Configurations();
  for (std::size_t i = 0; i < all.size(); i += stride) {
    const Traced traced = Trace(all[i], 1000 + i);
    tally.lines << all[i].Name() << "\t" << traced.line << "\n";
    if (compare) {
      EXPECT_EQ(traced.line, recorded[all[i].Name()]) << all[i].Name();
    }
    tally.alarms += traced.line.find(" 1x") != std::string::npos ? 1 : 0;
    tally.scored += traced.scored;
  }
  ForceKernels(nullptr);
  return tally;
}

TEST(Golden, PlainFormsGiveTheRecordedTraces) {
  const bool update = std::getenv("STOPNGO_GOLDEN_UPDATE") != nullptr;
  const Tally tally = TraceAll(AvailableKernels().front(), 1, !update);
  // Few scores, or no alarm in most traces, would show little.
  EXPECT_GE(tally.scored, 2000);
  EXPECT_GT(tally.alarms, 30);
  if (update) std::ofstream(STOPNGO_GOLDEN) << tally.lines.str();
}

TEST(Golden, FastestFormsGiveTheRecordedTraces) {
  if (AvailableKernels().size() == 1) GTEST_SKIP() << "the plain forms are all there is";
  TraceAll(AvailableKernels().back(), 1, true);
}

TEST(Golden, FormsInBetweenGiveTheRecordedTraces) {
  if (AvailableKernels().size() < 3) GTEST_SKIP() << "there are none";
  // The stride shares no factor with the number of ways to crop, so that it meets every filter.
  for (const KernelTable& table : AvailableKernels().subspan(1, AvailableKernels().size() - 2)) {
    EXPECT_GT(TraceAll(table, 5, true).scored, 300);
  }
}

}  // namespace

// golden_trace.cpp: what whole detectors make of moving pictures, a line each.
#include "golden_trace.h"

#include <memory>
#include <sstream>

#include "decide.h"
#include "moving_picture.h"
#include "random.h"
#include "vel_stopngo_ctx.h"

namespace test {
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

/// Decisions as runs: "0x5 1x21 0x3".
void AppendRun(std::string& runs, int flag, int length) {
  if (length > 0) runs += (runs.empty() ? "" : " ") + std::to_string(flag) + "x" + std::to_string(length);
}

/// Weights whose scores lie on both sides of the threshold: strong inputs, and an output bias that takes
/// off what the hidden nodes give at rest, one half each.
void DrawWeights(VEL_STOPNGO_CTX& ctx, std::uint64_t seed) {
  Random random(seed);
  for (float& weight : ctx.Weight) weight = random.Signed() * 4;
  float* output = ctx.Weight + (ctx.Features_2 + 1) * ctx.Hiddens;
  output[ctx.Hiddens] = 0;
  for (DATA_32 node = 0; node < ctx.Hiddens; ++node) output[ctx.Hiddens] -= output[node] / 2;
}

}  // namespace

std::string GoldenCase::Name() const {
  return std::to_string(original) + " scale " + std::to_string(scale) + " filter " + std::to_string(filter);
}

std::vector<GoldenCase> GoldenCases() {
  std::vector<GoldenCase> all;
  const auto add = [&](int original, int scale, int filter) {
    all.push_back({original, scale, filter, 1000 + all.size()});
  };
  for (const int filter : {0, 1, 2}) {
    for (const int scale : {0, 2, 4, 5, 6, 7, 8}) add(800, scale, filter);
    for (const int original : {1280, 1920}) {
      for (const int scale : {0, 2, 4, 6, 8}) add(original, scale, filter);
    }
  }
  return all;
}

Traced Trace(const Origin& origin, const GoldenCase& golden) {
  const int width = golden.original;
  MovingPicture picture(width, width == 800 ? 480 : width * 9 / 16, golden.seed);
  const auto context = std::make_unique<VEL_STOPNGO_CTX>();
  VEL_STOPNGO_CTX& ctx = *context;
  origin.operations->open(&ctx);
  DrawWeights(ctx, golden.seed);
  int unused = 0;
  origin.operations->control(
      &ctx, VEL_CTRL_STOPNGO_ROI_X, 290, VEL_CTRL_STOPNGO_ROI_Y, 170, VEL_CTRL_STOPNGO_SET_SCALE,
      golden.scale, VEL_CTRL_STOPNGO_SET_FILTER, golden.filter, VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, width,
      VEL_CTRL_STOPNGO_SET_TIME_BEEPING, 1, VEL_CTRL_STOPNGO_SET_TIME_COOLING, 2,
      VEL_CTRL_STOPNGO_SET_TIME_LEAVING, 1, VEL_CTRL_STOPNGO_UPDATE_PARAMS, &unused, VEL_CTRL_STOPNGO_END);
  Digest pictures;
  Digest vectors;
  Digest scores;
  Traced traced;
  std::string runs;
  int flag = 0;
  int length = 0;
  for (int frame = 0; frame < kFrames; ++frame) {
    const bool analysed = frame > 0 && !InHold(ctx);
    if (origin.operations->write(&ctx, const_cast<std::uint8_t*>(picture.Next().data()), 0) != 0) {
      runs += " refused";
      break;
    }
    pictures.Add(frame == 0 ? ctx.FrameOld : ctx.FrameNew, 220 * 140);
    if (analysed) {
      const float score = origin.score(ctx.Feature, ctx.Weight, 160, 16);
      vectors.Add(ctx.Motion, sizeof ctx.Motion);
      scores.Add(&score, sizeof score);
      ++traced.scored;
    }
    if (ctx.Flag != flag) {
      AppendRun(runs, flag, length);
      flag = ctx.Flag;
      length = 0;
    }
    ++length;
  }
  AppendRun(runs, flag, length);
  origin.operations->close(&ctx);
  traced.line = pictures.Hex() + "\t" + vectors.Hex() + "\t" + scores.Hex() + "\t" + runs;
  return traced;
}

std::map<std::string, std::string> RecordedTraces(std::string_view lines) {
  std::map<std::string, std::string> traces;
  std::istringstream file{std::string(lines)};
  for (std::string line; std::getline(file, line);) {
    const std::size_t tab = line.find('\t');
    if (tab != std::string::npos) traces[line.substr(0, tab)] = line.substr(tab + 1);
  }
  return traces;
}

}  // namespace test

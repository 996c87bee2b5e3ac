// hostile_test.cpp: settings drawn at random, with every buffer against unmapped memory.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <span>
#include <vector>

#include "detector.h"
#include "heap.h"
#include "random.h"
#include "seed.h"

namespace {

using test::Fenced;

constexpr VEL_CTRL_STOPNGO kWordCodes[] = {
    VEL_CTRL_STOPNGO_SET_TIME_BEEPING,
    VEL_CTRL_STOPNGO_SET_TIME_COOLING,
    VEL_CTRL_STOPNGO_SET_TIME_LEAVING,
    VEL_CTRL_STOPNGO_INPUT_WIDTH,
    VEL_CTRL_STOPNGO_INPUT_HEIGHT,
    VEL_CTRL_STOPNGO_ROI_X,
    VEL_CTRL_STOPNGO_ROI_Y,
    VEL_CTRL_STOPNGO_ROI_WIDTH,
    VEL_CTRL_STOPNGO_ROI_HEIGHT,
    VEL_CTRL_STOPNGO_SET_SCALE,
    VEL_CTRL_STOPNGO_SET_FRAME_SKIP,
    VEL_CTRL_STOPNGO_SET_GAP_OP,
    VEL_CTRL_STOPNGO_SET_FILTER,
    VEL_CTRL_STOPNGO_SET_BLOCK_SIZE,
    VEL_CTRL_STOPNGO_SET_FEATURES_COUNT,
    VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT,
    VEL_CTRL_STOPNGO_LCD_WIDTH,
    VEL_CTRL_STOPNGO_LCD_HEIGHT,
    VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE,
};

/// Extremes, the sizes around which capacities end, and plain small numbers.
int Draw(test::Random& random) {
  constexpr std::array<std::uint32_t, 26> kValues = {
      0,   1,   2,   7,   8,   9,   10,  16,  20,   40,   79,          80,          81,
      140, 159, 160, 161, 220, 239, 480, 800, 1280, 1920, 0x80000000U, 0xFFFFFFFFU, 0xFFFFFFF0U};
  return static_cast<int>(random.Below(4) == 0 ? random.Below(300) : kValues[random.Below(kValues.size())]);
}

/// Memory as large as the host declared it, ending at an unmapped page; not mapped when such a host
/// could not exist.
std::unique_ptr<Fenced> Declared(std::uint64_t rows, std::uint64_t columns, std::uint64_t bytes) {
  // Address space costs nothing here, but the emulator that runs the device's tests keeps a record of every page.
#if defined(__aarch64__)
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 28;
#else
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 40;
#endif
  if (rows > kLimit || columns > kLimit / bytes || (columns > 0 && rows > kLimit / bytes / columns))
    return nullptr;
  auto memory = std::make_unique<Fenced>(rows * columns * bytes);
  if (!memory->Mapped()) memory.reset();
  return memory;
}

std::unique_ptr<Fenced> FrameFor(const VEL_STOPNGO_CTX& ctx) {
  const auto width = static_cast<std::uint32_t>(ctx.originalSize);
  if (width != ctx.EndXInput && width == 1920) return Declared(1080, 1920, 1);
  if (width != ctx.EndXInput && width == 1280) return Declared(720, 1280, 1);
  return Declared(ctx.EndYInput, ctx.EndXInput, 1);
}

/// A region with more pixels than a test has time for. Rows without pixels cost nothing, however many.
bool TooLong(const VEL_STOPNGO_CTX& ctx) { return std::uint64_t{ctx.EndY} * ctx.EndX > (1U << 22); }

struct Outcomes {
  int accepted = 0, refused = 0;
};

/// One detector: settings, an optional derivation, frames; then other settings under the old buffers.
void Trial(test::Random& random, Outcomes& outcomes) {
  test::Detector detector;
  std::unique_ptr<Fenced> framebuffer;
  for (int round = 0; round < 3; ++round) {
    // Few codes: most draws would be refused for one reason, and hide the others.
    for (std::uint32_t i = random.Below(round == 0 ? 6 : 3); i > 0; --i) {
      detector.Control(kWordCodes[random.Below(std::size(kWordCodes))], Draw(random));
    }
    if (random.Below(2) == 0) detector.Update();
    const std::unique_ptr<Fenced> frame = FrameFor(*detector.Context());
    if (frame == nullptr || TooLong(*detector.Context())) continue;
    if (frame->Bytes().size() < (1U << 20)) random.Fill(frame->Bytes());
    const std::uint64_t rows = detector->debug_fb_height > 0 ? detector->debug_fb_height : detector->EndY;
    framebuffer = Declared(rows, detector->debug_fb_width, 4);
    detector->debug_fb = framebuffer == nullptr ? nullptr : reinterpret_cast<char*>(framebuffer->Data());
    for (int i = 0; i < 4; ++i) {
      const off_t result = detector.Write(frame->Data());
      ASSERT_TRUE(result == 0 || result == -1);
      ++(result == 0 ? outcomes.accepted : outcomes.refused);
    }
  }
}

TEST(Hostile, NoSettingsLeaveABuffer) {
  const test::HeapRule rule(test::HeapRule::Kind::kFenced);
  test::Random random(test::Seed(20));
  Outcomes outcomes;
  for (int trial = 0; trial < 1500 && !HasFatalFailure(); ++trial) {
    test::AtWork("trial " + std::to_string(trial));
    Trial(random, outcomes);
  }
  // Both answers have to be frequent, or the draws test little.
  EXPECT_GT(outcomes.accepted, 1000);
  EXPECT_GT(outcomes.refused, 1000);
}

/// Every pixel of the region and of the search is wanted: the largest settings that are accepted touch the
/// last byte of frame and buffers, one more of anything is refused.
TEST(Hostile, AcceptsUpToTheLastByte) {
  const test::HeapRule rule(test::HeapRule::Kind::kFenced);
  for (int block_size = 7; block_size <= 20; ++block_size) {
    for (int rest = 0; rest < 3; ++rest) {
      test::Detector detector;
      const int height = 5 * block_size + rest;
      const int width = 6 * block_size + rest;
      detector.Control(VEL_CTRL_STOPNGO_INPUT_WIDTH, width, VEL_CTRL_STOPNGO_INPUT_HEIGHT, height,
                       VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, width, VEL_CTRL_STOPNGO_ROI_WIDTH, width,
                       VEL_CTRL_STOPNGO_ROI_HEIGHT, height, VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, block_size);
      detector.Update();
      Fenced frame(static_cast<std::size_t>(width) * height);
      test::Random random(test::Seed(block_size));
      for (int i = 0; i < 4; ++i) {
        random.Fill(frame.Bytes());
        // Below 8 a run of 8 passes the block; without a rest the last one passes the buffer.
        const bool fits = block_size >= 8 || rest > 0;
        EXPECT_EQ(detector.Write(frame.Data()), fits || i == 0 ? 0 : -1) << block_size << " rest " << rest;
      }
      detector.Control(VEL_CTRL_STOPNGO_INPUT_HEIGHT, height - 1);
      EXPECT_EQ(detector.Write(frame.Data()), -1);
    }
  }
}

}  // namespace

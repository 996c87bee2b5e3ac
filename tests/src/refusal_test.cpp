// refusal_test.cpp: which settings a frame is refused with, in which words, and which just still run.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "detector.h"

namespace {

using test::Detector;

using Settings = std::vector<std::pair<VEL_CTRL_STOPNGO, int>>;

/// Settings, and what becomes of the frame that comes after them.
struct RefusalCase {
  Settings derived;     ///< sizes are derived anew from these, if there are any
  int frames;           ///< that run then
  Settings then;        ///< in force from the next frame on
  const char* refusal;  ///< of that frame; null: it runs
};

constexpr int kLowest = std::numeric_limits<int>::min();

constexpr const char* kRuns = nullptr;
constexpr const char* kRegion = "region reaches outside the frame";
constexpr const char* kCrop = "region does not fit the analysis buffer";
constexpr const char* kMirror = "debug mirror reads outside the analysis buffer";
constexpr const char* kBlocks = "more blocks than the motion field holds";
constexpr const char* kMatching = "block matching would leave the analysis buffers";
constexpr const char* kFeatures = "more features than the histogram has entries";
constexpr const char* kVector = "features do not fit the feature vector";
constexpr const char* kInputs = "more inputs than the feature vector holds";
constexpr const char* kNetwork = "network larger than the weights";

const RefusalCase kRefusalCases[] = {
    // The region within the frame, as one run of bytes.
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_Y, 340}}, kRuns},
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_Y, 341}}, kRegion},
    {{}, 2, {{VEL_CTRL_STOPNGO_ROI_Y, -1}}, kRegion},
    {{}, 1, {{VEL_CTRL_STOPNGO_ROI_Y, 340}, {VEL_CTRL_STOPNGO_ROI_X, 580}}, kRuns},
    {{}, 1, {{VEL_CTRL_STOPNGO_ROI_Y, 340}, {VEL_CTRL_STOPNGO_ROI_X, 581}}, kRegion},
    {{}, 3, {{VEL_CTRL_STOPNGO_INPUT_HEIGHT, 140}}, kRuns},
    {{}, 3, {{VEL_CTRL_STOPNGO_INPUT_HEIGHT, 139}}, kRegion},
    // A corner before the frame, also where zoom, scale to full resolution or the declared height wrap it back
    // inside, and where nothing would be read of it.
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_X, -1}}, kRegion},
    {{}, 2, {{VEL_CTRL_STOPNGO_ROI_Y, -10}, {VEL_CTRL_STOPNGO_SET_SCALE, 2}}, kRegion},
    {{}, 2, {{VEL_CTRL_STOPNGO_ROI_X, -22}, {VEL_CTRL_STOPNGO_SET_SCALE, 2}}, kRegion},
    {{}, 2, {{VEL_CTRL_STOPNGO_ROI_X, -1}, {VEL_CTRL_STOPNGO_SET_SCALE, 1}}, kRegion},
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_X, kLowest}, {VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, 1280}}, kRegion},
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_Y, -200}, {VEL_CTRL_STOPNGO_INPUT_HEIGHT, -1}}, kRegion},
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_X, -1}, {VEL_CTRL_STOPNGO_ROI_WIDTH, 0}}, kRegion},
    // Rows without pixels, four thousand million of them, and a frame with none.
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_WIDTH, 0}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, -1}}, kRuns},
    {{}, 2, {{VEL_CTRL_STOPNGO_ROI_WIDTH, 0}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, -1}}, kRuns},
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, -1}, {VEL_CTRL_STOPNGO_LCD_WIDTH, 0}},
     kRuns},
    // In 64 bits the last row's offset would wrap to one inside the frame.
    {{}, 0, {{VEL_CTRL_STOPNGO_INPUT_WIDTH, -1}, {VEL_CTRL_STOPNGO_ROI_Y, -1}}, kRegion},
    {{}, 0, {{VEL_CTRL_STOPNGO_ROI_WIDTH, 65536}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, 65536}}, kRegion},
    // Crop and filter within the buffers as they were allocated; an unhandled scale crops nothing.
    {{}, 2, {{VEL_CTRL_STOPNGO_ROI_HEIGHT, 141}}, kCrop},
    {{}, 2, {{VEL_CTRL_STOPNGO_ROI_WIDTH, 230}}, kCrop},
    {{}, 1, {{VEL_CTRL_STOPNGO_SET_SCALE, 1}, {VEL_CTRL_STOPNGO_SET_FILTER, 2}}, kRuns},
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1}, {VEL_CTRL_STOPNGO_SET_FILTER, 1}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, 141}},
     kCrop},
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1}, {VEL_CTRL_STOPNGO_SET_FILTER, 2}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, 141}},
     kCrop},
    // A filter that finds no room for its window touches nothing: the mirror is what reads too far then.
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1},
      {VEL_CTRL_STOPNGO_SET_FILTER, 1},
      {VEL_CTRL_STOPNGO_ROI_WIDTH, 3},
      {VEL_CTRL_STOPNGO_ROI_HEIGHT, 20000}},
     kMirror},
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1},
      {VEL_CTRL_STOPNGO_SET_FILTER, 1},
      {VEL_CTRL_STOPNGO_ROI_WIDTH, 20000},
      {VEL_CTRL_STOPNGO_ROI_HEIGHT, 3}},
     kMirror},
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1},
      {VEL_CTRL_STOPNGO_SET_FILTER, 2},
      {VEL_CTRL_STOPNGO_ROI_WIDTH, 4},
      {VEL_CTRL_STOPNGO_ROI_HEIGHT, 20000}},
     kMirror},
    {{}, 2, {{VEL_CTRL_STOPNGO_SET_SCALE, 1}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, 141}}, kMirror},
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1},
      {VEL_CTRL_STOPNGO_ROI_HEIGHT, 141},
      {VEL_CTRL_STOPNGO_LCD_HEIGHT, 140}},
     kRuns},
    {{},
     2,
     {{VEL_CTRL_STOPNGO_SET_SCALE, 1}, {VEL_CTRL_STOPNGO_ROI_HEIGHT, 141}, {VEL_CTRL_STOPNGO_LCD_WIDTH, 0}},
     kRuns},
    // Blocks and their search; a first frame is not analysed.
    {{{VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 8}}, 1, {}, kBlocks},
    {{{VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 0}}, 1, {}, kBlocks},
    {{{VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 11}}, 2, {}, kRuns},
    {{}, 1, {{VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 0}}, kRuns},
    {{}, 1, {{VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 11}}, kMatching},
    // A second buffer that is smaller than the first: the patches end 4 bytes before the end of 130 rows.
    {{}, 1, {{VEL_CTRL_STOPNGO_ROI_HEIGHT, 130}}, kRuns},
    {{}, 1, {{VEL_CTRL_STOPNGO_ROI_HEIGHT, 129}}, kMatching},
    {{{VEL_CTRL_STOPNGO_ROI_WIDTH, 66},
      {VEL_CTRL_STOPNGO_ROI_HEIGHT, 60},
      {VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 6}},
     1,
     {},
     kMatching},
    {{{VEL_CTRL_STOPNGO_ROI_WIDTH, 61},
      {VEL_CTRL_STOPNGO_ROI_HEIGHT, 72},
      {VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, 7}},
     2,
     {},
     kRuns},
    // Features, on both sides of the vector's middle, and the network. The middle stays where it was derived.
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 80}}, 2, {}, kRuns},
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 81}}, 1, {}, kFeatures},
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, -2147483647 - 1}}, 1, {}, kFeatures},
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 100}, {VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, 0}},
     1,
     {{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 60}},
     kRuns},
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 100}}, 1, {{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 61}}, kVector},
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 1 << 30}},
     1,
     {{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 1}},
     kVector},
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 1 << 30}, {VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, 0}},
     1,
     {{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 0}},
     kRuns},
    {{{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 81}}, 1, {{VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 79}}, kInputs},
    {{}, 2, {{VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, 16}}, kRuns},
    {{}, 2, {{VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, 17}}, kNetwork},
    {{}, 2, {{VEL_CTRL_STOPNGO_SET_HIDDENS_COUNT, -1}}, kNetwork},
};

std::string Described(const RefusalCase& c) {
  std::string text = "derived:";
  for (const auto& [code, value] : c.derived)
    text += " " + std::to_string(code) + "=" + std::to_string(value);
  text += ", " + std::to_string(c.frames) + " frames, then:";
  for (const auto& [code, value] : c.then) text += " " + std::to_string(code) + "=" + std::to_string(value);
  return text;
}

TEST(WriteRefusal, KeepsOffWhatWouldLeaveABufferAndChangesNothing) {
  const auto frame = test::Noise(800 * 480, 7);
  std::vector<std::uint8_t> framebuffer(800 * 480 * 4);
  for (const RefusalCase& c : kRefusalCases) {
    SCOPED_TRACE(Described(c));
    Detector detector;
    detector.Control(VEL_CTRL_STOPNGO_DEBUG_FB, framebuffer.data(), VEL_CTRL_STOPNGO_LCD_WIDTH, 800);
    for (const auto& [code, value] : c.derived) detector.Control(code, value);
    if (!c.derived.empty()) detector.Update();
    for (int i = 0; i < c.frames; ++i) ASSERT_EQ(detector.Write(frame.data()), 0);
    for (const auto& [code, value] : c.then) detector.Control(code, value);
    detector.Control(VEL_CTRL_STOPNGO_SET_LOG, 1);
    const auto before = detector.Snapshot();
    off_t written = 0;
    const std::string printed = test::Printed([&] { written = detector.Write(frame.data()); });
    if (c.refusal == nullptr) {
      EXPECT_EQ(written, 0) << printed;
      continue;
    }
    EXPECT_EQ(written, -1);
    EXPECT_EQ(printed, "[Stop&Go] frame refused: " + std::string(c.refusal) + "\n");
    EXPECT_EQ(detector.Snapshot(), before);
    // Without the log it is as silent as it is harmless.
    detector.Control(VEL_CTRL_STOPNGO_SET_LOG, 0);
    EXPECT_EQ(test::Printed([&] { detector.Write(frame.data()); }), "");
  }
}

}  // namespace

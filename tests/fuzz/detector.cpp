// detector.cpp: fuzz target: any control calls and frames, with the frames exactly as large as declared.
//
// Input: records of five bytes, a code and a 32-bit value. Codes of control are applied; others write a frame whose
// pixels follow from the value. Whatever is touched beside a buffer is a fault, and no call may take longer than its
// pixels are worth.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "fenced.h"
#include "input.h"
#include "random.h"
#include "time_limit.h"
#include "vel_stopngo.h"
#include "vel_stopngo_ctx.h"

namespace {

using test::Fenced;

/// Frames and regions up to here are tried, a little more than the default region; larger ones cost memory and time,
/// not insight.
constexpr std::uint64_t kLargest = 1U << 15;
/// Pixels of all regions of a run: runs that go on for long tell no more than a few short ones.
constexpr std::uint64_t kMostPixels = 1U << 17;

/// Pictures of noise, a piece of which is a frame.
const std::vector<std::uint8_t>& Noise() {
  static const std::vector<std::uint8_t> noise = [] {
    std::vector<std::uint8_t> bytes(kLargest + 0x10000);
    test::Random(1).Fill(bytes);
    return bytes;
  }();
  return noise;
}

/// A frame in full resolution. Only where the region lies is it read: it is filled once.
std::uint8_t* OriginalFrame(std::size_t size) {
  struct Frame {
    explicit Frame(std::size_t bytes) : memory(bytes) { test::Random(bytes).Fill(memory.Bytes()); }
    Fenced memory;
  };
  static const Frame larger(std::size_t{1920} * 1080);
  static const Frame smaller(std::size_t{1280} * 720);
  return (size == larger.memory.Bytes().size() ? larger : smaller).memory.Data();
}

/// What the host has declared that it hands over.
struct Declared {
  explicit Declared(const VEL_STOPNGO_CTX& ctx) {
    const auto width = static_cast<std::uint32_t>(ctx.originalSize);
    original = width != ctx.EndXInput && (width == 1920 || width == 1280);
    size = std::uint64_t{ctx.EndYInput} * ctx.EndXInput;
    if (original) size = width == 1920 ? std::size_t{1920} * 1080 : std::size_t{1280} * 720;
  }
  bool original;
  std::uint64_t size;
};

/// What a run has come to.
struct Run {
  VEL_STOPNGO_CTX& ctx;
  std::uint64_t region =
      0;  ///< the largest one so far, since buffers keep the size that they were allocated with
  std::uint64_t pixels = 0;  ///< of all regions so far
};

/// As large as declared, or none when that is too large; without rows or columns it is still there.
std::unique_ptr<Fenced> FramebufferFor(const VEL_STOPNGO_CTX& ctx) {
  const std::uint64_t rows = ctx.debug_fb_height > 0 ? ctx.debug_fb_height : ctx.EndY;
  const std::uint64_t pixels = rows * ctx.debug_fb_width;
  return pixels > kLargest ? nullptr : std::make_unique<Fenced>(4 * pixels);
}

void Write(Run& run, std::uint8_t* frame) {
  const std::unique_ptr<Fenced> framebuffer = FramebufferFor(run.ctx);
  run.ctx.debug_fb = framebuffer == nullptr ? nullptr : reinterpret_cast<char*>(framebuffer->Data());
  const fuzz::TimeLimit limit("write", run.region);
  const off_t result = vel_stopngo_write(&run.ctx, frame, 0);
  fuzz::Expect(result == 0 || result == -1, "write returns neither 0 nor -1");
}

void WriteFrame(Run& run, std::uint32_t value) {
  const Declared declared(run.ctx);
  const std::uint64_t region = std::uint64_t{run.ctx.EndY} * run.ctx.EndX;
  if (region > kLargest || (declared.size > kLargest && !declared.original)) return;
  run.region = std::max(run.region, region);
  run.pixels += region;
  if (run.pixels > kMostPixels) return;
  if (declared.original) {
    Write(run, OriginalFrame(declared.size));
    return;
  }
  const Fenced frame(std::span<const std::uint8_t>(Noise()).subspan(value % 0x10000, declared.size),
                     value >> 31 == 0 ? Fenced::Side::kEnd : Fenced::Side::kStart);
  Write(run, frame.Data());
}

/// A host that changes its settings when it hears of a decision.
int OnDecision(void* param, int flag) {
  auto* const ctx = static_cast<VEL_STOPNGO_CTX*>(param);
  if (flag == 1) vel_stopngo_update_params(ctx);
  if (flag == 2) vel_stopngo_close(ctx);
  return flag;
}

/// Codes whose value is no int. Every third value is a null pointer.
void ControlPointer(VEL_STOPNGO_CTX* ctx, VEL_CTRL_STOPNGO code, std::uint32_t value) {
  static const std::string long_path(300, 'x');
  constexpr const char* kPaths[] = {"", "/", "/nowhere/w.bin"};
  static int result;
  void* pointer = &result;
  if (code == VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH) {
    pointer = const_cast<char*>(value % 4 == 3 ? long_path.c_str() : kPaths[value % 4]);
  }
  if (code == VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK) pointer = reinterpret_cast<void*>(&OnDecision);
  if (code == VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS) pointer = ctx;
  // The callback goes by what it is told.
  const bool null = value % 3 == 0 && code != VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS;
  vel_stopngo_control(ctx, code, null ? nullptr : pointer, VEL_CTRL_STOPNGO_END);
}

void Apply(Run& run, std::uint8_t code, std::uint32_t value) {
  const auto control = static_cast<VEL_CTRL_STOPNGO>(code);
  switch (code) {
    case VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH:
    case VEL_CTRL_STOPNGO_LOAD_CLASSIFY:
    case VEL_CTRL_STOPNGO_UPDATE_PARAMS:
    case VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK:
    case VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS:
      ControlPointer(&run.ctx, control, value);
      return;
    case VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD:
      vel_stopngo_control(&run.ctx, control, static_cast<std::int32_t>(value) / 1e9, VEL_CTRL_STOPNGO_END);
      return;
    default:
      break;
  }
  // The framebuffer is made for each frame.
  if (code > VEL_CTRL_STOPNGO_END && code < VEL_CTRL_STOPNGO_MAX && code != VEL_CTRL_STOPNGO_DEBUG_FB) {
    vel_stopngo_control(&run.ctx, control, static_cast<int>(value), VEL_CTRL_STOPNGO_END);
  } else {
    WriteFrame(run, value);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto context = std::make_unique<VEL_STOPNGO_CTX>();
  VEL_STOPNGO_CTX* ctx = context.get();
  vel_stopngo_open(ctx);
  // A small frame and region, so that a run takes little time; the input may change them.
  vel_stopngo_control(ctx, VEL_CTRL_STOPNGO_INPUT_WIDTH, 120, VEL_CTRL_STOPNGO_INPUT_HEIGHT, 80,
                      VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, 120, VEL_CTRL_STOPNGO_ROI_WIDTH, 100,
                      VEL_CTRL_STOPNGO_ROI_HEIGHT, 60, VEL_CTRL_STOPNGO_SET_FEATURES_COUNT, 16,
                      VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, &OnDecision,
                      VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, ctx, VEL_CTRL_STOPNGO_END);
  vel_stopngo_update_params(ctx);
  Run run{*ctx};
  for (fuzz::Input input(data, size); !input.Empty();) {
    const auto code = input.Take<std::uint8_t>();
    Apply(run, code, input.Take<std::uint32_t>());
  }
  vel_stopngo_close(ctx);
  return 0;
}

// detector.cpp: fuzz target: any control calls and frames, with the frames exactly as large as declared.
//
// Input: records of five bytes, a code and a 32-bit value. Codes of control are applied; others write a
// frame whose pixels follow from the value. The address sanitizer sees every access beyond a buffer, and no call
// may take longer than its pixels are worth.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "time_limit.h"
#include "vel_stopngo.h"
#include "vel_stopngo_ctx.h"

namespace {

/// Frames and regions up to here are tried; larger ones cost memory and time, not insight.
constexpr std::uint64_t kLargest = 1U << 17;

std::uint64_t DeclaredSize(const VEL_STOPNGO_CTX& ctx) {
  const auto width = static_cast<std::uint32_t>(ctx.originalSize);
  if (width != ctx.EndXInput && width == 1920) return 1920 * 1080;
  if (width != ctx.EndXInput && width == 1280) return 1280 * 720;
  return std::uint64_t{ctx.EndYInput} * ctx.EndXInput;
}

bool TakesAnInt(std::uint8_t code) {
  switch (code) {
    case VEL_CTRL_STOPNGO_SET_CLASSIFY_PATH:
    case VEL_CTRL_STOPNGO_LOAD_CLASSIFY:
    case VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD:
    case VEL_CTRL_STOPNGO_SET_LOG:
    case VEL_CTRL_STOPNGO_UPDATE_PARAMS:
    case VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK:
    case VEL_CTRL_STOPNGO_DEBUG_FB:
    case VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS:
      return false;
    default:
      return code > VEL_CTRL_STOPNGO_END && code < VEL_CTRL_STOPNGO_MAX;
  }
}

/// As large as declared, or none when that is too large; without rows or columns it is still there.
std::unique_ptr<char[]> FramebufferFor(const VEL_STOPNGO_CTX& ctx) {
  const std::uint64_t rows = ctx.debug_fb_height > 0 ? ctx.debug_fb_height : ctx.EndY;
  const std::uint64_t pixels = rows * ctx.debug_fb_width;
  return pixels > kLargest ? nullptr : std::make_unique<char[]>(4 * pixels);
}

/// Region: the largest one so far, since buffers keep the size that they were allocated with.
void WriteFrame(VEL_STOPNGO_CTX& ctx, std::uint32_t pixels, std::uint64_t& region) {
  const std::uint64_t size = DeclaredSize(ctx);
  const std::uint64_t now = std::uint64_t{ctx.EndY} * ctx.EndX;
  if (size > kLargest || now > kLargest) return;
  region = std::max(region, now);
  const auto frame = std::make_unique<std::uint8_t[]>(size);
  for (std::uint64_t i = 0; i < size; ++i) frame[i] = static_cast<std::uint8_t>(pixels * (i / 7 + 1) >> 13);
  const std::unique_ptr<char[]> framebuffer = FramebufferFor(ctx);
  ctx.debug_fb = framebuffer.get();
  const fuzz::TimeLimit limit("write", region);
  vel_stopngo_write(&ctx, frame.get(), 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto context = std::make_unique<VEL_STOPNGO_CTX>();
  VEL_STOPNGO_CTX* ctx = context.get();
  vel_stopngo_open(ctx);
  // A small working frame, so that a run takes little time; the input may change it.
  vel_stopngo_control(ctx, VEL_CTRL_STOPNGO_INPUT_WIDTH, 240, VEL_CTRL_STOPNGO_INPUT_HEIGHT, 150,
                      VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, 240, VEL_CTRL_STOPNGO_END);
  std::uint64_t region = 0;
  for (; size >= 5; data += 5, size -= 5) {
    std::uint32_t value = 0;
    std::memcpy(&value, data + 1, sizeof value);
    if (TakesAnInt(data[0])) {
      vel_stopngo_control(ctx, static_cast<VEL_CTRL_STOPNGO>(data[0]), static_cast<int>(value),
                          VEL_CTRL_STOPNGO_END);
    } else if (data[0] == VEL_CTRL_STOPNGO_UPDATE_PARAMS) {
      vel_stopngo_update_params(ctx);
    } else {
      WriteFrame(*ctx, value, region);
    }
  }
  vel_stopngo_close(ctx);
  return 0;
}

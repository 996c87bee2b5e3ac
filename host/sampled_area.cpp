// sampled_area.cpp: finds the sampled part of a frame by showing coordinates to the module.
#include "host/sampled_area.h"

#include <cstddef>

#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

struct Corners {
  int first = 0;
  int last = 0;
};

/// What arrives in the first and the last pixel of the analysis buffer when every pixel (x, y) of the
/// frame holds value(x, y).
template <typename Value>
Corners Show(Detector& detector, LumaFrame& frame, Value value) {
  auto* pixel = frame.pixels.data();
  for (int y = 0; y < frame.height; ++y) {
    for (int x = 0; x < frame.width; ++x) *pixel++ = static_cast<std::uint8_t>(value(x, y));
  }
  detector.Write(frame);
  ++frame.index;
  const VEL_STOPNGO_CTX& ctx = detector.Context();
  // The first frame fills FrameOld, every later one FrameNew.
  const data_08* buffer = ctx.FrameNew != nullptr ? ctx.FrameNew : ctx.FrameOld;
  const auto size = static_cast<std::size_t>(ctx.EndY) * ctx.EndX;
  if (buffer == nullptr || size == 0) return {};
  return {buffer[0], buffer[size - 1]};
}

/// A coordinate needs more than the eight bits of a pixel: it is shown in two halves.
Corners Join(Corners low, Corners high) { return {high.first * 256 + low.first, high.last * 256 + low.last}; }

double Step(Corners corners, DATA_32 count) {
  return count > 1 ? static_cast<double>(corners.last - corners.first) / (count - 1) : 0;
}

}  // namespace

SampledArea ProbeSampledArea(const Module& module, const Settings& settings, const FrameFormat& source) {
  Settings probe = OnlyLooking(settings);
  probe.filter = 0;  // would change the coordinates
  probe.debug_fb.clear();
  Detector detector(module, probe, source);
  LumaFrame frame{.width = source.width, .height = source.height, .index = 0, .time_s = 0, .pixels = {}};
  frame.pixels.resize(static_cast<std::size_t>(source.width) * source.height);

  const Corners column_low = Show(detector, frame, [](int x, int) { return x & 255; });
  const Corners column_high = Show(detector, frame, [](int x, int) { return x >> 8; });
  const Corners row_low = Show(detector, frame, [](int, int y) { return y & 255; });
  const Corners row_high = Show(detector, frame, [](int, int y) { return y >> 8; });
  const Corners columns = Join(column_low, column_high);
  const Corners rows = Join(row_low, row_high);
  const VEL_STOPNGO_CTX& ctx = detector.Context();
  return {.left = static_cast<double>(columns.first),
          .top = static_cast<double>(rows.first),
          .step_x = Step(columns, ctx.EndX),
          .step_y = Step(rows, ctx.EndY)};
}

}  // namespace stopngo

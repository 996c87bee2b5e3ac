// outline.cpp: the region's outline, drawn into a frame's luma.
#include "host/gstreamer/outline.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace stopngo::gst {
namespace {

/// By decision, at 800 × 480: pixels.
constexpr std::array kBreadths{2, 8, 4};
constexpr int kWorkingWidth = 800;
constexpr std::uint8_t kWhite = 235;  // of limited range, and nearly of full range

void Fill(const MappedFrame& frame, const PixelArea& area) {
  const auto [width, height] = frame.Size();
  const std::ptrdiff_t step = frame.Step();
  const std::ptrdiff_t stride = frame.Stride();
  for (std::ptrdiff_t y = std::max(area.top, 0); y < std::min(area.bottom, height); ++y) {
    for (std::ptrdiff_t x = std::max(area.left, 0); x < std::min(area.right, width); ++x) {
      frame.Luma()[y * stride + x * step] = kWhite;
    }
  }
}

}  // namespace

void DrawOutline(const MappedFrame& frame, const PixelArea& region, int decision) {
  const int breadth =
      std::max(1, kBreadths.at(static_cast<std::size_t>(decision)) * frame.Size().width / kWorkingWidth);
  const auto [left, top, right, bottom] = region;
  Fill(frame, {left - breadth, top - breadth, right + breadth, top});
  Fill(frame, {left - breadth, bottom, right + breadth, bottom + breadth});
  Fill(frame, {left - breadth, top, left, bottom});
  Fill(frame, {right, top, right + breadth, bottom});
}

}  // namespace stopngo::gst

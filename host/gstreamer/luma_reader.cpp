// luma_reader.cpp: the luma of a stream's frames, as the module takes it.
#include "host/gstreamer/luma_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace stopngo::gst {
namespace {

std::size_t PixelsOf(FrameSize size) {
  return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

}  // namespace

// Without a reference to the buffer, which its owner holds longer than this lives.
MappedFrame::MappedFrame(const GstVideoInfo& info, GstBuffer* buffer, GstMapFlags flags)
    : frame_(),
      mapped_(gst_video_frame_map(
                  &frame_, &info, buffer,
                  static_cast<GstMapFlags>(int{flags} | int{GST_VIDEO_FRAME_MAP_FLAG_NO_REF})) != 0),
      valid_(mapped_ && IsInside(GST_VIDEO_COMP_Y)) {}

MappedFrame::~MappedFrame() {
  if (mapped_) gst_video_frame_unmap(&frame_);
}

std::uint8_t* MappedFrame::Luma() const {
  return static_cast<std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&frame_, GST_VIDEO_COMP_Y));
}
int MappedFrame::Step() const { return GST_VIDEO_FRAME_COMP_PSTRIDE(&frame_, GST_VIDEO_COMP_Y); }
int MappedFrame::Stride() const { return GST_VIDEO_FRAME_COMP_STRIDE(&frame_, GST_VIDEO_COMP_Y); }
FrameSize MappedFrame::Size() const {
  return {GST_VIDEO_FRAME_WIDTH(&frame_), GST_VIDEO_FRAME_HEIGHT(&frame_)};
}

bool MappedFrame::IsWhole() const {
  unsigned component = 0;
  while (component < GST_VIDEO_FRAME_N_COMPONENTS(&frame_) && IsInside(component)) ++component;
  return component == GST_VIDEO_FRAME_N_COMPONENTS(&frame_);
}

// A buffer's own layout may say anything, and rows may run upwards. Where it has one, each plane is mapped by itself.
bool MappedFrame::IsInside(unsigned component) const {
  const auto* const first = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&frame_, component));
  const std::ptrdiff_t last_row = std::ptrdiff_t{GST_VIDEO_FRAME_COMP_STRIDE(&frame_, component)} *
                                  (GST_VIDEO_FRAME_COMP_HEIGHT(&frame_, component) - 1);
  const std::ptrdiff_t row_end = std::ptrdiff_t{GST_VIDEO_FRAME_COMP_PSTRIDE(&frame_, component)} *
                                     (GST_VIDEO_FRAME_COMP_WIDTH(&frame_, component) - 1) +
                                 1;
  const GstMapInfo& map =
      frame_.map[frame_.meta != nullptr ? GST_VIDEO_FRAME_COMP_PLANE(&frame_, component) : 0];
  const std::ptrdiff_t start = first - map.data;
  return start + std::min<std::ptrdiff_t>(0, last_row) >= 0 &&
         start + std::max<std::ptrdiff_t>(0, last_row) + row_end <= static_cast<std::ptrdiff_t>(map.size);
}

LumaReader::LumaReader(FrameSize stream, FrameSize handed_over, const PixelArea& looked_at)
    : stream_(stream), handed_over_(handed_over), looked_at_(looked_at), copy_(PixelsOf(stream)) {
  if (stream != handed_over) scaler_.emplace(stream, handed_over);
}

std::span<const std::uint8_t> LumaReader::Read(const MappedFrame& frame) {
  if (scaler_) return Scaled(frame);
  if (frame.Step() == 1 && frame.Stride() == stream_.width) return {frame.Luma(), PixelsOf(stream_)};
  Copy(frame, looked_at_);
  return copy_;
}

// The scaler knows strides, but no steps.
std::span<const std::uint8_t> LumaReader::Scaled(const MappedFrame& frame) {
  if (frame.Step() == 1) return scaler_->Scale(frame.Luma(), frame.Stride());
  Copy(frame, {0, 0, stream_.width, stream_.height});
  return scaler_->Scale(copy_.data(), stream_.width);
}

void LumaReader::Copy(const MappedFrame& frame, const PixelArea& area) {
  const auto columns = static_cast<std::size_t>(area.right - area.left);
  const std::ptrdiff_t step = frame.Step();
  for (int y = area.top; y < area.bottom; ++y) {
    const std::uint8_t* const row = frame.Luma() + std::ptrdiff_t{y} * frame.Stride() + area.left * step;
    std::uint8_t* const out = copy_.data() + std::ptrdiff_t{y} * stream_.width + area.left;
    if (step == 1) {
      std::memcpy(out, row, columns);
      continue;
    }
    for (std::size_t x = 0; x < columns; ++x) out[x] = row[static_cast<std::ptrdiff_t>(x) * step];
  }
}

}  // namespace stopngo::gst

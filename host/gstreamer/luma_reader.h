// luma_reader.h: the luma of a stream's frames, as the module takes it.
#pragma once

#include <gst/video/video.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/common/luma.h"
#include "host/gstreamer/luma_scaler.h"

namespace stopngo::gst {

/// Pixels of a frame, bottom and right exclusive.
struct PixelArea {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

/// A buffer of the stream, mapped while this lives, for reading unless told otherwise.
class MappedFrame {
 public:
  MappedFrame(const GstVideoInfo& info, GstBuffer* buffer, GstMapFlags flags = GST_MAP_READ);
  ~MappedFrame();
  MappedFrame(const MappedFrame&) = delete;
  MappedFrame& operator=(const MappedFrame&) = delete;

  /// False: the buffer cannot be mapped, or its luma would not lie inside its memory.
  [[nodiscard]] bool Valid() const { return valid_; }
  [[nodiscard]] std::uint8_t* Luma() const;  ///< of the first pixel
  [[nodiscard]] int Step() const;            ///< bytes from pixel to pixel
  [[nodiscard]] int Stride() const;          ///< bytes from row to row
  [[nodiscard]] FrameSize Size() const;
  /// Whether all else of the picture lies inside the buffer's memory, too.
  [[nodiscard]] bool IsWhole() const;
  [[nodiscard]] GstVideoFrame& Frame() { return frame_; }

 private:
  [[nodiscard]] bool IsInside(unsigned component) const;

  GstVideoFrame frame_;
  bool mapped_;
  bool valid_;
};

/// Hands luma over without a copy where it lies as the module reads it; otherwise copies the pixels that are looked at;
/// frames of another size than the module's are scaled. Takes its memory when it is made, and none for a frame.
class LumaReader {
 public:
  /// looked_at: what of frames of the size that is handed over the module reads.
  LumaReader(FrameSize stream, FrameSize handed_over, const PixelArea& looked_at);

  /// Of a frame of the stream's size; valid until the next call, and as long as the frame is mapped.
  std::span<const std::uint8_t> Read(const MappedFrame& frame);

 private:
  std::span<const std::uint8_t> Scaled(const MappedFrame& frame);
  void Copy(const MappedFrame& frame, const PixelArea& area);

  FrameSize stream_;
  FrameSize handed_over_;
  PixelArea looked_at_;
  std::vector<std::uint8_t> copy_;  ///< of the stream's size
  std::optional<LumaScaler> scaler_;
};

}  // namespace stopngo::gst

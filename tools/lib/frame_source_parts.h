// frame_source_parts.h: what OpenSource puts together: readers that give frames as the input has them,
// and the scaler.
#pragma once

#include <memory>

#include "frame_source.h"

struct SwsContext;

namespace stopngo {

/// No plane is larger than this many pixels a side: a damaged header must not make anybody allocate more.
inline constexpr int kMaximumSide = 16384;
/// For inputs that do not tell their rate.
inline constexpr double kUnknownRate = 25;

/// Y4M (8 bits, or monochrome) or, with a raw size, raw luma; from a file or standard input.
std::unique_ptr<FrameSource> OpenPlain(const SourceOptions& options);
/// Whether a file starts as Y4M does.
bool IsY4m(const std::string& path);

/// Anything that FFmpeg reads. Only built with FFmpeg.
std::unique_ptr<FrameSource> OpenFfmpeg(const SourceOptions& options);

/// Scales luma planes to one size. Only built with FFmpeg.
class LumaScaler {
 public:
  LumaScaler(int width, int height);
  ~LumaScaler();
  LumaScaler(const LumaScaler&) = delete;
  LumaScaler& operator=(const LumaScaler&) = delete;
  /// Replaces the frame's plane. Throws Failure.
  void Scale(LumaFrame& frame);

 private:
  int width_;
  int height_;
  SwsContext* context_ = nullptr;  ///< for the input size seen last
  std::vector<std::uint8_t> scaled_;
};

}  // namespace stopngo

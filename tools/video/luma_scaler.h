// luma_scaler.h: scales luma planes to one size. Only built with FFmpeg.
#pragma once

#include <cstdint>
#include <vector>

#include "host/common/luma.h"

struct SwsContext;

namespace stopngo {

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

// detector_loop.h: a whole detector that is shown two frames in turn, never alarmed.
#pragma once

#include <memory>
#include <vector>

#include "scene.h"
#include "vel_stopngo_ctx.h"

namespace bench {

struct DetectorSettings {
  int original = 800;  ///< width of the frames
  int scale = 0;
  int filter = 0;
  Content content = Content::kMoving;
  int left = kRegion[1];
  int top = kRegion[0];
  int width = kRegionWidth;
  int height = kRegionHeight;
  int block = 10;
};

class DetectorLoop {
 public:
  explicit DetectorLoop(const DetectorSettings& settings);
  ~DetectorLoop();
  DetectorLoop(const DetectorLoop&) = delete;
  DetectorLoop& operator=(const DetectorLoop&) = delete;

  /// One frame, analysed in full; false when the detector refused it.
  bool Write();
  [[nodiscard]] unsigned Blocks() const { return context_->NumY * context_->NumX; }

 private:
  FramePair frames_;
  std::unique_ptr<VEL_STOPNGO_CTX> context_;
  bool second_ = false;
};

}  // namespace bench

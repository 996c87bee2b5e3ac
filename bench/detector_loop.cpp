// detector_loop.cpp: a whole detector that is shown two frames in turn.
#include "detector_loop.h"

#include "random.h"
#include "vel_stopngo.h"

namespace bench {

DetectorLoop::DetectorLoop(const DetectorSettings& settings)
    : frames_(MakeFrames(settings.original, settings.original == 800 ? 480 : settings.original * 9 / 16,
                         settings.content)),
      context_(std::make_unique<VEL_STOPNGO_CTX>()) {
  vel_stopngo_open(context_.get());
  test::Random random(11);
  for (float& weight : context_->Weight) weight = random.Signed();
  int unused = 0;
  // No score reaches 1: an alarm would be followed by frames without analysis.
  vel_stopngo_control(context_.get(), VEL_CTRL_STOPNGO_SET_CLASSIFIY_THRESHOLD, 1.0, VEL_CTRL_STOPNGO_ROI_X,
                      settings.left, VEL_CTRL_STOPNGO_ROI_Y, settings.top, VEL_CTRL_STOPNGO_ROI_WIDTH,
                      settings.width, VEL_CTRL_STOPNGO_ROI_HEIGHT, settings.height,
                      VEL_CTRL_STOPNGO_SET_BLOCK_SIZE, settings.block, VEL_CTRL_STOPNGO_SET_SCALE,
                      settings.scale, VEL_CTRL_STOPNGO_SET_FILTER, settings.filter,
                      VEL_CTRL_STOPNGO_SET_ORIGINAL_SIZE, settings.original, VEL_CTRL_STOPNGO_UPDATE_PARAMS,
                      &unused, VEL_CTRL_STOPNGO_END);
}

DetectorLoop::~DetectorLoop() { vel_stopngo_close(context_.get()); }

bool DetectorLoop::Write() {
  Pixels& frame = second_ ? frames_.after : frames_.before;
  second_ = !second_;
  return vel_stopngo_write(context_.get(), frame.data(), 0) == 0;
}

}  // namespace bench

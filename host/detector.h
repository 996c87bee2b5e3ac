// detector.h: one detector running in the module, as a device's host would drive it. What is shown of a detector comes from the module itself: decisions from its
// callback, scores from its exported routines, counters and vectors from its context.
#pragma once

#include <cstdint>
#include <memory>

#include "host/common/luma.h"
#include "host/gates/gates.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "vel_stopngo.h"

namespace stopngo {

/// What one write did.
struct FrameReport {
  std::int64_t index = 0;  ///< frame number in the input
  double time_s = 0;
  bool decided = false;   ///< false on the first frame, which only primes the detector
  bool analysed = false;  ///< false during a hold: no motion, no score
  float score = 0;        ///< 0 where nothing was analysed
  int alarm_counter = 0;
  int hold_timer = 0;
  int decision = 0;
  bool changed = false;  ///< the callback came
  double write_ns = 0;   ///< time spent in write
  ClosedGates closed{};  ///< gates that held the module during this write
};

class Detector {
 public:
  /// Opens a detector and applies the settings, the weights included (their size is checked against
  /// the counts in force first). frames: those that will be written. Throws Failure.
  Detector(const Module& module, const Settings& settings, const FrameFormat& frames);
  ~Detector();
  Detector(const Detector&) = delete;
  Detector& operator=(const Detector&) = delete;

  /// Throws Failure when the module refuses the frame, std::bad_alloc when it lacked the memory for it.
  FrameReport Write(const LumaView& frame);
  FrameReport Write(const LumaFrame& frame) { return Write(ViewOf(frame)); }
  /// After a pause: the next frame is a first one, which nothing is compared with, and count and hold are over. Gates
  /// go on; they know of a pause by the time stamps.
  void Restart();
  /// The own vehicle's speed, for its gates, in the unit of the settings' `speed-above` and at a time on the frames'
  /// clock. Without gates it is of no use, and does nothing.
  void SetSpeed(double speed, double time_s);
  /// What is wrong with an input of the gates, each once, in a sentence; null: nothing more.
  [[nodiscard]] const char* TakeRemark();
  /// The detector's record, for vectors, histograms and geometry: see vel_stopngo_ctx.h.
  [[nodiscard]] const VEL_STOPNGO_CTX& Context() const;
  /// For who puts into the record what was found out before.
  [[nodiscard]] VEL_STOPNGO_CTX& Context();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace stopngo

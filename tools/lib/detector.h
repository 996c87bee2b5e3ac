// detector.h: the module loaded from its shared object, and one detector running in it, as a device's
// host would drive it. What is shown of a detector comes from the module itself: decisions from its
// callback, scores from its exported routines, counters and vectors from its context.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "frame_source.h"
#include "settings.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {

/// libzetstopngo.so, loaded with dlopen.
class Module {
 public:
  /// path: the shared object; empty: $STOPNGO_MODULE, else beside the program, else by the loader's
  /// own search. Throws Failure naming what was tried.
  explicit Module(const std::string& path = {});
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  [[nodiscard]] const VEL_STOPNGO_OPERATION& Operations() const { return *operations_; }
  /// An exported routine by its name and type, such as Routine<decltype(Classify_Feature_)>("Classify_Feature_").
  template <typename Function>
  [[nodiscard]] Function* Routine(const char* name) const {
    return reinterpret_cast<Function*>(Symbol(name));
  }

 private:
  [[nodiscard]] void* Symbol(const char* name) const;

  void* handle_;
  const VEL_STOPNGO_OPERATION* operations_;
};

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
};

class Detector {
 public:
  /// Opens a detector and applies the settings, the weights included (their size is checked against
  /// the counts in force first). width: of the frames that will be written; fps: their rate. Throws Failure.
  Detector(const Module& module, const Settings& settings, const SourceInfo& source);
  ~Detector();
  Detector(const Detector&) = delete;
  Detector& operator=(const Detector&) = delete;

  /// Throws Failure when the module refuses the frame.
  FrameReport Write(LumaFrame& frame);
  /// The detector's record, for vectors, histograms and geometry.
  [[nodiscard]] const VEL_STOPNGO_CTX& Context() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace stopngo

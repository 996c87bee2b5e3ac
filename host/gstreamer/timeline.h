// timeline.h: which frames of a stream are handed over, by their presentation time stamps.
#pragma once

#include <gst/gst.h>

#include <cstdint>
#include <optional>

#include "host/common/pace.h"

namespace stopngo::gst {

/// Between two frames, in seconds, more than this is no step, but another place or another time.
inline constexpr double kJump_s = 1;

/// What a frame is in its stream.
struct Moment {
  enum class Break {
    kNone,
    kStart,   ///< the first frame, or the first one after Forget
    kGap,     ///< later than the one before by more than kJump_s
    kReturn,  ///< earlier by more than that
  };

  bool taken = false;
  Break before = Break::kNone;
  bool falls = false;  ///< not later than the one before: it is passed over
  double time_s = 0;   ///< from the start, or the last return
  double step_s = 0;   ///< from the frame before, unless this is a start
};

/// The nearest frames to a number a second. That a frame is nearest can be told by the time of the next one, which is
/// not there yet: a frame lasts until then, by its duration, by the stream's rate, or by the step before.
class Timeline {
 public:
  /// rate: frames a second to hand over; 0: all. fps: how many there are; 0: that varies.
  Timeline(double rate, double fps);

  /// pts: unset for a frame without a time stamp, which then follows the one before at the stream's rate.
  Moment At(GstClockTime pts, GstClockTime duration);
  /// Nothing that comes belongs to what came: a seek.
  void Forget() { last_.reset(); }
  /// What a frame lasts where nothing tells.
  [[nodiscard]] double Period() const;

 private:
  [[nodiscard]] double Lasts(GstClockTime duration) const;

  double rate_;
  double fps_;
  double jump_s_;
  std::optional<Pace> pace_;  ///< none: all are handed over
  std::optional<GstClockTime> last_;
  GstClockTime start_ = 0;  ///< what time_s counts from
  GstClockTime anew_ = 0;   ///< what the pace counts from
  double last_step_s_ = 0;  ///< 0: there was none
};

}  // namespace stopngo::gst

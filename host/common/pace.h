// pace.h: which frames are handed over: the nearest ones to a number a second.
#pragma once

#include <cstdint>
#include <optional>

namespace stopngo {

/// Times that differ by less than this are the same, seconds: their last bits must decide nothing.
inline constexpr double kSameTime_s = 1e-6;

/// Of frames in order of time it takes those nearest to the times 0, 1/rate, 2/rate, …, none twice. Of two that
/// are equally near it takes the earlier.
class Pace {
 public:
  /// rate: frames a second to take, above 0. fps: about how many there are; a frame stands for half of the time
  /// between two on either side.
  Pace(double rate, double fps) : rate_(rate), half_period_s_(0.5 / fps + kSameTime_s) {}

  /// Whether the frame at time_s is taken. next_s: the time of the one after it; unset: it is the last.
  [[nodiscard]] bool Takes(double time_s, std::optional<double> next_s);

  /// How many of a number of frames, fps a second, are taken.
  [[nodiscard]] std::int64_t Count(std::int64_t frames, double fps) const;

 private:
  [[nodiscard]] double SlotTime() const { return static_cast<double>(slot_) / rate_; }

  double rate_;
  double half_period_s_;
  std::int64_t slot_ = 0;  ///< the time that a frame is wanted for, in 1/rate seconds
};

}  // namespace stopngo

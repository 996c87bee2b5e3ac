// judge.h: which alarms were right: the times of alarms against what happened in the clip.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "base/label.h"

namespace stopngo {

/// A driver who has not noticed by then is told too late; it is also how long an alarm of a departure
/// may trail its end.
inline constexpr double kInTime_s = 3;

enum class Verdict {
  kRight,     ///< the first alarm after a departure's start, and within kInTime_s of it
  kMissed,    ///< a departure without such an alarm; there is no alarm to it
  kFalse,     ///< any other alarm
  kRepeat,    ///< one more alarm of a departure that has its right one, until kInTime_s after its end
  kUnjudged,  ///< an alarm where the clip has no label
};

/// "right", "missed", "false", "repeat", "unjudged".
const char* NameOf(Verdict verdict);

struct Event {
  Verdict verdict;
  double time_s;                   ///< of the alarm; of a missed departure, its start
  double delay_s = 0;              ///< right alarms: since the departure's start
  std::optional<Activity> during;  ///< the label that it falls into, if any
};

/// alarms: times at which the decision changed to 1, in order. labels: in order, not overlapping.
/// The events come in order of time.
std::vector<Event> Judge(std::span<const double> alarms, std::span<const LabelSpan> labels);

}  // namespace stopngo

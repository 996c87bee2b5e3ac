// tally.h: events of many clips counted together, and the figures that follow from the counts.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/label.h"
#include "evaluate/judge.h"

namespace stopngo {

/// A share and its 95 % interval, each 0 to 1.
struct Share {
  double value;
  double low;
  double high;
};

/// Events per hour, and the bound that the true rate does not exceed with 95 % confidence.
struct HourlyRate {
  double value;
  double bound;
};

struct Tally {
  int clips = 0;
  int departures = 0;
  int right = 0;
  int false_standing = 0;  ///< false alarms while our own vehicle stands
  int false_driving = 0;
  int repeats = 0;
  int unjudged = 0;
  double standing_s = 0;  ///< time under the labels of a vehicle of ours that stands
  double driving_s = 0;
  std::vector<double> delays_s;  ///< of right alarms

  /// One clip.
  void Add(std::span<const Event> events, std::span<const LabelSpan> labels);

  // Each without a value where there is nothing to divide by.
  /// Right alarms among departures; the interval is Wilson's.
  [[nodiscard]] std::optional<Share> Recall() const;
  /// Right alarms among right and false ones.
  [[nodiscard]] std::optional<double> Precision() const;
  /// False alarms; the bound follows from their Poisson distribution.
  [[nodiscard]] std::optional<HourlyRate> FalseStanding() const;
  [[nodiscard]] std::optional<HourlyRate> FalseDriving() const;
  /// The shortest time to alarm that a share (0 to 1) of the right alarms did not exceed.
  [[nodiscard]] std::optional<double> Delay_s(double share) const;
};

struct NamedTally {
  std::string name;
  Tally tally;
};

/// Whether one result is to be preferred to another on the same clips, where no more than so many false
/// alarms an hour of standing are wanted: within that limit higher recall, then a shorter median time to
/// alarm; beyond it the rate nearer to the limit.
bool Better(const Tally& one, const Tally& other, double false_per_hour);
/// Whether a result is within that limit.
bool WithinLimit(const Tally& tally, double false_per_hour);

}  // namespace stopngo

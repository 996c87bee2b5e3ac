// feature_track.cpp: what is wanted of the perceptron at each moment of a clip.
#include "train/feature_track.h"

#include <algorithm>

#include "evaluate/judge.h"

namespace stopngo {
namespace {

constexpr double kSoon_s = 1.5;  // half of them are to come within this time

/// Until kInTime_s after its end an alarm tells of a departure once more, and is no mistake.
bool InDeparture(const LabelSpan& span, double time_s) {
  return span.activity == Activity::kLeadDeparts && time_s > span.start_s && time_s <= span.end_s + kInTime_s;
}

}  // namespace

void SetAims(FeatureTrack& track, const std::vector<double>& times_s, const std::vector<LabelSpan>& labels) {
  track.quiet.clear();
  for (const double time_s : times_s) {
    const bool labelled = std::any_of(labels.begin(), labels.end(), [&](const LabelSpan& span) {
      return time_s >= span.start_s && time_s <= span.end_s;
    });
    const bool departure = std::any_of(labels.begin(), labels.end(),
                                       [&](const LabelSpan& span) { return InDeparture(span, time_s); });
    track.quiet.push_back(labelled && !departure ? 1 : 0);
  }
  const auto first_after = [&times_s](double time_s) {
    return static_cast<std::size_t>(std::upper_bound(times_s.begin(), times_s.end(), time_s) -
                                    times_s.begin());
  };
  track.departures.clear();
  for (const LabelSpan& span : labels) {
    if (span.activity != Activity::kLeadDeparts) continue;
    const DepartureWindow window{first_after(span.start_s), first_after(span.start_s + kSoon_s),
                                 first_after(span.start_s + kInTime_s)};
    if (window.begin < window.soon) track.departures.push_back(window);
  }
}

}  // namespace stopngo

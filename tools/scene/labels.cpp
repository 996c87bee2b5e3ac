// labels.cpp: overlapping events made into labels that follow one another.
#include "scene/labels.h"

#include <algorithm>
#include <optional>

namespace stopngo {
namespace {

// A vehicle that drives away counts as departing for this long: later it is too small to be told apart
// from one that is merely far.
constexpr double kDeparture_s = 3;
// A departure is no event when we start with it, or so soon that nobody needs to be told.
constexpr double kTogether_s = 1;

bool Holds(const std::vector<Span>& spans, double at) {
  return std::any_of(spans.begin(), spans.end(),
                     [at](const Span& span) { return at >= span.start_s && at < span.end_s; });
}

bool Overlaps(const std::vector<Span>& spans, double from, double to) {
  return std::any_of(spans.begin(), spans.end(),
                     [from, to](const Span& span) { return from < span.end_s && to > span.start_s; });
}

/// The label at a moment; nothing where nothing is judged.
std::optional<Activity> At(const SceneEvents& events, const std::vector<Span>& departures, double at) {
  if (Holds(events.ego_moving, at)) return Activity::kEgoMoving;
  if (Holds(departures, at)) return Activity::kLeadDeparts;
  for (const Span& span : departures) {
    if (Holds(events.lead_moving, at) && at >= span.end_s) return std::nullopt;
  }
  return Holds(events.crossing, at) ? Activity::kCrossing : Activity::kStill;
}

}  // namespace

std::vector<LabelSpan> MakeLabels(const SceneEvents& events) {
  SceneEvents own = events;
  std::vector<Span> departures;
  std::vector<double> cuts{0, events.length_s};
  for (const Span& lead : events.lead_moving) {
    const double start = lead.start_s;
    if (Holds(events.ego_moving, start)) continue;
    if (Overlaps(events.ego_moving, start, start + kTogether_s)) {
      own.ego_moving.push_back({start, start + kTogether_s});
    } else {
      departures.push_back({start, std::min(lead.end_s, start + kDeparture_s)});
    }
  }
  for (const std::vector<Span>* spans : {&own.ego_moving, &own.lead_moving, &own.crossing, &departures}) {
    for (const Span& span : *spans) {
      cuts.push_back(std::clamp(span.start_s, 0.0, events.length_s));
      cuts.push_back(std::clamp(span.end_s, 0.0, events.length_s));
    }
  }
  std::sort(cuts.begin(), cuts.end());
  std::vector<LabelSpan> labels;
  for (std::size_t i = 0; i + 1 < cuts.size(); i++) {
    if (cuts[i + 1] <= cuts[i]) continue;
    const auto activity = At(own, departures, 0.5 * (cuts[i] + cuts[i + 1]));
    if (!activity) continue;
    if (!labels.empty() && labels.back().activity == *activity && labels.back().end_s == cuts[i]) {
      labels.back().end_s = cuts[i + 1];
    } else {
      labels.push_back({cuts[i], cuts[i + 1], *activity});
    }
  }
  return labels;
}

}  // namespace stopngo

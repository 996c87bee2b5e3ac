// judge.cpp: which alarms were right.
#include "evaluate/judge.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace stopngo {
namespace {

// Times are multiples of a frame's, and the last bit of a difference of two must not decide.
constexpr double kTolerance_s = 1e-6;

/// Where two spans meet, the later one has begun.
std::optional<Activity> ActivityAt(double time_s, std::span<const LabelSpan> labels) {
  std::optional<Activity> activity;
  for (const LabelSpan& span : labels) {
    if (time_s < span.start_s - kTolerance_s) break;
    activity.reset();
    if (time_s <= span.end_s + kTolerance_s) activity = span.activity;
  }
  return activity;
}

struct Departure {
  double start_s;
  double end_s;
  bool caught = false;
};

Event JudgeAlarm(double time_s, std::span<Departure> departures, std::span<const LabelSpan> labels) {
  Event event{.verdict = Verdict::kFalse, .time_s = time_s, .during = ActivityAt(time_s, labels)};
  // An alarm can only be about the departure that started last.
  const auto after = std::find_if(departures.begin(), departures.end(), [time_s](const Departure& departure) {
    return departure.start_s >= time_s - kTolerance_s;
  });
  if (after != departures.begin()) {
    Departure& last = *(after - 1);
    const double delay_s = time_s - last.start_s;
    if (!last.caught && delay_s <= kInTime_s + kTolerance_s) {
      last.caught = true;
      event.verdict = Verdict::kRight;
      event.delay_s = delay_s;
      return event;
    }
    if (last.caught && time_s <= last.end_s + kInTime_s + kTolerance_s) {
      event.verdict = Verdict::kRepeat;
      return event;
    }
  }
  if (!event.during) event.verdict = Verdict::kUnjudged;
  return event;
}

}  // namespace

const char* NameOf(Verdict verdict) {
  constexpr std::array kNames{"right", "missed", "false", "repeat", "unjudged"};
  return kNames.at(static_cast<std::size_t>(verdict));
}

std::vector<Event> Judge(std::span<const double> alarms, std::span<const LabelSpan> labels) {
  std::vector<Departure> departures;
  for (const LabelSpan& span : labels) {
    if (span.activity == Activity::kLeadDeparts) departures.push_back({span.start_s, span.end_s});
  }
  std::vector<Event> events;
  events.reserve(alarms.size() + departures.size());
  for (const double time_s : alarms) events.push_back(JudgeAlarm(time_s, departures, labels));
  for (const Departure& departure : departures) {
    if (departure.caught) continue;
    events.push_back(
        {.verdict = Verdict::kMissed, .time_s = departure.start_s, .during = Activity::kLeadDeparts});
  }
  std::stable_sort(events.begin(), events.end(),
                   [](const Event& a, const Event& b) { return a.time_s < b.time_s; });
  return events;
}

}  // namespace stopngo

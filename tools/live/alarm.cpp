// alarm.cpp: what is told of an alarm to whoever acts on it.
#include "live/alarm.h"

#include <nlohmann/json.hpp>

#include "base/results.h"
#include "base/time_of_day.h"

namespace stopngo {

nlohmann::ordered_json ObjectOf(const Alarm& alarm) {
  return {{"type", "alarm"},
          {"input", alarm.input},
          {"frame", alarm.frame},
          {"time", alarm.time_s},
          {"score", alarm.score},
          {"counter", alarm.counter},
          {"when", TimeOfDay(alarm.when)}};
}

std::string JsonOf(const Alarm& alarm) { return JsonLine(ObjectOf(alarm)); }

}  // namespace stopngo

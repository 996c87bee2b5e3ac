// alarm.h: what is told of an alarm to whoever acts on it.
#pragma once

#include <chrono>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace stopngo {

struct Alarm {
  std::string input;       ///< as the user named it
  std::int64_t frame = 0;  ///< its number in the input
  double time_s = 0;       ///< on the frames' clock
  float score = 0;
  int counter = 0;
  std::chrono::system_clock::time_point when;
};

nlohmann::ordered_json ObjectOf(const Alarm& alarm);
/// The same as one line, without its end.
std::string JsonOf(const Alarm& alarm);

}  // namespace stopngo

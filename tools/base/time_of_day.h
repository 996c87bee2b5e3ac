// time_of_day.h: points in time, as machines and people read them.
#pragma once

#include <chrono>
#include <string>

namespace stopngo {

/// UTC, to the millisecond, as ISO 8601 has it: "2026-11-25T12:34:56.789Z".
std::string TimeOfDay(std::chrono::system_clock::time_point time);

}  // namespace stopngo

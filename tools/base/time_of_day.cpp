// time_of_day.cpp: points in time, as machines and people read them.
#include "base/time_of_day.h"

#include <ctime>

#include "host/common/text.h"

namespace stopngo {

std::string TimeOfDay(std::chrono::system_clock::time_point time) {
  using std::chrono::floor;
  using std::chrono::milliseconds;
  const auto seconds = floor<std::chrono::seconds>(time);
  const std::time_t second = std::chrono::system_clock::to_time_t(seconds);
  std::tm utc{};
  gmtime_r(&second, &utc);
  return Print("%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday,
               utc.tm_hour, utc.tm_min, utc.tm_sec,
               static_cast<int>(floor<milliseconds>(time - seconds).count()));
}

}  // namespace stopngo

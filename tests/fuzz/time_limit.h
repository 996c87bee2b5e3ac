// time_limit.h: no call takes long for nothing: what a fuzz target holds every call to.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace fuzz {

/// Milliseconds of the processor that a call with a region of the default size may take. The plain forms with a
/// filter take three, blocks as large as the buffers up to ten.
constexpr double kCallLimit_ms = 10;
constexpr std::uint64_t kDefaultRegion = 220 * 140;

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
/// What the sanitizers and the coverage of a fuzzer make of the time of a loop over bytes.
constexpr double kInstrumented = 20;
#else
constexpr double kInstrumented = 1;
#endif
#else
constexpr double kInstrumented = 1;
#endif

/// Ends the program, as a finding, when its life takes longer than a call with so many pixels may. Counts the
/// thread's own time: what else runs on the machine is no fault of the call.
class TimeLimit {
 public:
  explicit TimeLimit(const char* call, std::uint64_t pixels) : call_(call), pixels_(pixels) {}
  ~TimeLimit() {
    const double taken = Now_ms() - start_;
    const double shares = 1 + static_cast<double>(pixels_) / static_cast<double>(kDefaultRegion);
    if (taken <= kCallLimit_ms * kInstrumented * shares) return;
    std::fprintf(stderr, "%s took %.1f ms for %llu pixels\n", call_, taken,
                 static_cast<unsigned long long>(pixels_));
    std::abort();
  }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;

 private:
  static double Now_ms() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
  }

  const char* call_;
  std::uint64_t pixels_;
  double start_ = Now_ms();
};

}  // namespace fuzz

// speed_source.h: the speed of the own vehicle, told by a call or read from a file.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace stopngo {

/// Holds the last speed until it is stale. The unit is whatever the source has.
class SpeedSource {
 public:
  /// path: of a file that holds a number, written anew whenever there is one, also when it is the same; or of a named
  /// pipe that receives numbers, a line each. Empty: speeds are told. stale_s: for so long a speed holds.
  SpeedSource(std::string path, double stale_s);
  ~SpeedSource();
  SpeedSource(const SpeedSource&) = delete;
  SpeedSource& operator=(const SpeedSource&) = delete;

  void Tell(double speed, double time_s);
  /// What there is at the time of a frame, which is given: looks for it without waiting. Nothing where it is stale, or
  /// never came.
  std::optional<double> At(double time_s);
  /// What is wrong, in a sentence; null: nothing, or it has been said.
  const char* TakeRemark() { return std::exchange(remark_, nullptr); }

 private:
  /// What tells one content of a file from the next.
  struct Version {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    bool operator==(const Version&) const = default;
  };
  enum class Fault { kNoNumber, kStale };

  void Look(double time_s);
  void ReadPipe(double time_s);
  void ReadFile(double time_s);
  void Take(std::string_view text, double time_s);
  void Say(Fault fault);

  std::string path_;
  double stale_s_;
  int pipe_ = -1;
  Version version_;
  std::array<char, 256> text_{};  ///< of a pipe: the start of a line whose end has not come
  std::size_t length_ = 0;
  std::optional<double> speed_;
  std::optional<double> told_s_;  ///< when; before the first speed, when it was first asked for
  std::array<bool, 2> said_{};    ///< by fault
  const char* remark_ = nullptr;
};

}  // namespace stopngo

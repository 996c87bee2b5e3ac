// latency.h: how long the calls of write took.
#pragma once

#include <cstdint>
#include <vector>

namespace stopngo {

/// Four bytes a frame: a camera at 30 frames a second fills 10 MB a day.
class Latency {
 public:
  void Add(double nanoseconds);
  /// The smallest time that share (0 to 1) of the frames did not exceed, in nanoseconds; 0 without frames.
  [[nodiscard]] double Percentile(double share) const;

 private:
  std::vector<float> nanoseconds_;
};

}  // namespace stopngo

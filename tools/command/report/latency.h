// latency.h: how long the calls of write took.
#pragma once

#include <cstddef>
#include <vector>

namespace stopngo {

/// Of the last frames, so that a camera that runs for ever takes no more memory: 2^18 at 6 a second are twelve hours.
class Latency {
 public:
  explicit Latency(std::size_t kept = std::size_t{1} << 18) : kept_(kept) {}
  void Add(double nanoseconds);
  /// The smallest time that share (0 to 1) of the frames did not exceed, in nanoseconds; 0 without frames.
  [[nodiscard]] double Percentile(double share) const;

 private:
  std::size_t kept_;
  std::size_t next_ = 0;  ///< the place of the next one, once there are so many
  std::vector<float> nanoseconds_;
};

}  // namespace stopngo

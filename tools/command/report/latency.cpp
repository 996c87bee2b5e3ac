// latency.cpp: how long the calls of write took.
#include "command/report/latency.h"

#include <algorithm>
#include <cmath>

namespace stopngo {

void Latency::Add(double nanoseconds) {
  if (nanoseconds_.size() < kept_) {
    nanoseconds_.push_back(static_cast<float>(nanoseconds));
    return;
  }
  nanoseconds_[next_] = static_cast<float>(nanoseconds);
  next_ = (next_ + 1) % kept_;
}

double Latency::Percentile(double share) const {
  if (nanoseconds_.empty()) return 0;
  std::vector<float> sorted = nanoseconds_;
  const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
  const auto nth = sorted.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(rank, 1) - 1);
  std::nth_element(sorted.begin(), nth, sorted.end());
  return *nth;
}

}  // namespace stopngo

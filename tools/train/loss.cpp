// loss.cpp: what training makes small.
#include "train/loss.h"

#include <Eigen/Core>

namespace stopngo {

// The blocks of a product, and with them the order of its sums, would follow the CPU's caches.
Loss::Loss() { Eigen::setCpuCacheSizes(32 * 1024, 512 * 1024, 4 * 1024 * 1024); }

}  // namespace stopngo

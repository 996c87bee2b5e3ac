// levels.h: the tables of kernels that are measured.
#pragma once

#include <vector>

#include "kernels/kernels.h"

namespace bench {

/// The plain forms as targets mean them, then every faster table that this processor runs, fastest last.
const std::vector<const KernelTable*>& Levels();

}  // namespace bench

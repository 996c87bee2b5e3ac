// default_weights.h: the weights that are used when none are named.
#pragma once

#include <optional>
#include <string>

namespace stopngo {

/// $STOPNGO_WEIGHTS where it is set; else the first default.bin in one of DataFolders (host/places.h). None where there
/// is no such file.
std::optional<std::string> FindDefaultWeights();

}  // namespace stopngo

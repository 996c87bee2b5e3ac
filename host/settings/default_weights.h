// default_weights.h: the weights that are used when none are named, of the detector and of its history gate.
#pragma once

#include <optional>
#include <string>

namespace stopngo {

/// $STOPNGO_WEIGHTS where it is set; else the first default.bin in one of DataFolders (host/places.h). None where there
/// is no such file.
std::optional<std::string> FindDefaultWeights();
/// The same of the history gate: $STOPNGO_HISTORY_WEIGHTS, and history.bin.
std::optional<std::string> FindHistoryWeights();

}  // namespace stopngo

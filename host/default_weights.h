// default_weights.h: the weights that are used when none are named.
#pragma once

#include <optional>
#include <string>

namespace stopngo {

/// $STOPNGO_WEIGHTS where it is set; else those installed with the program; for a program that lies in
/// build/NAME of a clone, those of the clone. None where there is no such file.
std::optional<std::string> FindDefaultWeights();

}  // namespace stopngo

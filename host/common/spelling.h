// spelling.h: what somebody may have meant by a name that is not known.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace stopngo {

/// "; is rate meant?", for the known name that a misspelt one is nearest to; empty where none is near.
std::string MeantBy(std::string_view misspelt, std::span<const std::string> known);

}  // namespace stopngo

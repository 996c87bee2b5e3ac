// version.h: which scenes these are.
#pragma once

#include <cstdint>

namespace stopngo {

/// Raised by every change after which a kind and seed give other pictures, labels or a region elsewhere. Whoever keeps
/// what was found out about a scene keeps this beside it.
inline constexpr std::uint32_t kSceneVersion = 2;

}  // namespace stopngo

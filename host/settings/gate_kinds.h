// gate_kinds.h: which gates there are.
#pragma once

#include <array>
#include <cstddef>

namespace stopngo {

/// In the order of kGateNames, which is the one in which they are told.
enum class GateKind { kHistory, kLight, kSpeed, kOnce, kPicture };
inline constexpr std::array kGateNames{"history", "light", "speed", "once", "picture"};
inline constexpr std::size_t kGateCount = kGateNames.size();

constexpr const char* NameOf(GateKind kind) { return kGateNames.at(static_cast<std::size_t>(kind)); }

/// A set of gates has a bit for each.
constexpr int BitOf(GateKind kind) { return 1 << static_cast<int>(kind); }

}  // namespace stopngo

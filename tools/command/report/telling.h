// telling.h: how the results of an input are told, among those of others.
#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace stopngo {

/// By decision.
inline constexpr std::array kDecisionNames = {"none", "alarm", "cooling"};

struct Telling {
  bool json = false;   ///< JSON Lines instead of lines to read
  std::string input;   ///< whose results they are; empty: there is one input alone
  bool dated = false;  ///< of a live input: JSON tells the time of day as well

  /// Throws Failure when standard output cannot be written.
  void Line(const std::string& line) const;
  /// An object whose first key is "type".
  void Object(const nlohmann::ordered_json& object) const;
};

}  // namespace stopngo

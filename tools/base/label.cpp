// label.cpp: the names of activities.
#include "base/label.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "host/common/text.h"

namespace stopngo {
namespace {

constexpr std::array<std::string_view, 4> kNames{"still", "lead_departs", "crossing", "ego_moving"};

}  // namespace

std::string_view NameOf(Activity activity) { return kNames[static_cast<std::size_t>(activity)]; }

std::optional<Activity> ActivityOf(std::string_view name) {
  const auto* const found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end()) return std::nullopt;
  return static_cast<Activity>(found - kNames.begin());
}

std::string ActivityNames() {
  std::string names;
  for (const std::string_view name : kNames) Enlist(names, name);
  return names;
}

}  // namespace stopngo

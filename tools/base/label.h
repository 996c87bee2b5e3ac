// label.h: what happens in a clip and when: the spans that a detector is judged by.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stopngo {

enum class Activity {
  kStill,        ///< our own vehicle stands, and so does the one ahead
  kLeadDeparts,  ///< the vehicle ahead starts at the beginning of the span and drives away
  kCrossing,     ///< we stand, and vehicles or people cross the region
  kEgoMoving,    ///< our own vehicle moves
};

struct LabelSpan {
  double start_s;
  double end_s;
  Activity activity;
};

/// As manifests and labels files have it: "still", "lead_departs", "crossing", "ego_moving".
std::string_view NameOf(Activity activity);
std::optional<Activity> ActivityOf(std::string_view name);
/// All of them, with commas.
std::string ActivityNames();

}  // namespace stopngo

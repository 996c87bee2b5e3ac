// region.h: where in a picture a detector looks.
#pragma once

#include <optional>

#include "host/settings/settings.h"
#include "scene/recipe/recipe.h"

namespace stopngo {

/// The picture that regions of clips refer to, pixels: the module's working size.
inline constexpr int kPictureWidth = 800;
inline constexpr int kPictureHeight = 480;

/// Columns and rows, pixels.
struct Region {
  int x, y, width, height;
};

/// The region that settings have; that of the defaults is where a forward camera sees the vehicle ahead.
Region RegionOf(const Settings& settings);

/// Pixels to the right and downwards.
struct RegionMove {
  int x = 0, y = 0;
  bool operator==(const RegionMove&) const = default;
};

/// The region moved, as far as the picture goes.
Region Moved(Region region, const RegionMove& by);

/// The settings with their region in frames of a size.
Settings Placed(Settings settings, const Region& region, int frame_width, int frame_height);

/// Where the rear of the vehicle ahead is seen, in a picture of 800 × 480, which parts of it may exceed.
struct RearSides {
  double left, right, top, bottom;
};

/// Of a scene while it stands; nothing when nobody is ahead.
std::optional<RearSides> RearOf(const SceneOptions& options);

/// Where to look for the vehicle ahead of a scene while it stands, in a picture of 800 × 480: unless the scene's
/// options aim it, the default region, moved onto the vehicle's rear when it does not lie on it.
Region SuggestedRegion(const SceneOptions& options);

}  // namespace stopngo

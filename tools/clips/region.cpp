// region.cpp: where in a picture a detector looks.
#include "clips/region.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "scene/motion/ego_path.h"
#include "scene/vehicle/driven_vehicle.h"
#include "scene/vehicle/rear_view.h"

namespace stopngo {
namespace {

/// When the region is placed: at the beginning, or, when we are still under way then, when we have come
/// nearest to the vehicle ahead.
double NearestTime(const SceneOptions& options, const DrivenVehicle& lead) {
  if (options.ego.speed == 0) return 0;
  constexpr double kStep_s = 0.25;
  const EgoPath path(options.ego, options.ego_turning, options.length_s);
  double nearest = 1e9;
  double at_s = 0;
  for (int i = 0; i * kStep_s < options.length_s; i++) {
    const double time_s = i * kStep_s;
    Camera camera = WaitingCamera(options);
    path.Place(camera, time_s);
    const Pose rear = lead.RearAt(time_s).pose;
    const double ahead = PlaceOf(camera, rear.x, rear.z).ahead;
    if (ahead < nearest) {
      nearest = ahead;
      at_s = time_s;
    }
  }
  return at_s;
}

}  // namespace

Region RegionOf(const Settings& settings) {
  return {settings.roi_x, settings.roi_y, settings.roi_width, settings.roi_height};
}

Region Moved(Region region, const RegionMove& by) {
  region.x = std::clamp(region.x + by.x, 0, kPictureWidth - region.width);
  region.y = std::clamp(region.y + by.y, 0, kPictureHeight - region.height);
  return region;
}

Settings Placed(Settings settings, const Region& region, int frame_width, int frame_height) {
  settings.input_width = frame_width;
  settings.input_height = frame_height;
  settings.roi_x = region.x;
  settings.roi_y = region.y;
  settings.roi_width = region.width;
  settings.roi_height = region.height;
  return settings;
}

std::optional<RearSides> RearOf(const SceneOptions& options) {
  if (!options.lead_present) return std::nullopt;
  // Few texels do: all that counts is how high and wide the vehicle is.
  const DrivenVehicle lead(options.lead, {4, 1e4}, options.seed);
  const double time_s = NearestTime(options, lead);
  Camera camera = WaitingCamera(options);
  EgoPath(options.ego, options.ego_turning, options.length_s).Place(camera, time_s);
  const RearView view(lead.Body().Back(), camera, lead.RearAt(time_s), options.light);
  // Of a lorry or a bus, the part that a car would have: there lamps, plate and bumper are.
  constexpr double kLooked_m = 1.7;
  const double part = std::min(1.0, kLooked_m / lead.Body().Height());
  const double across = static_cast<double>(kPictureWidth) / options.width;
  const double down = static_cast<double>(kPictureHeight) / options.height;
  return RearSides{view.Left() * across, view.Right() * across,
                   (view.Bottom() - part * (view.Bottom() - view.Top())) * down, view.Bottom() * down};
}

Region SuggestedRegion(const SceneOptions& options) {
  Region region = RegionOf(Settings());
  if (const std::optional<RearSides> rear = RearOf(options)) {
    // Keeps a stretch where it is when it lies between the limits, else takes it to a share of their way.
    const auto place = [&options](int at, int length, double low, double high, double share) {
      if (!options.region.aimed && at >= low && at + length <= high) {
        return at;
      }
      return static_cast<int>(std::lround(low + (high - low) * share)) - length / 2;
    };
    region.x = place(region.x, region.width, rear->left, rear->right, 0.5 + options.region.across);
    region.y = place(region.y, region.height, rear->top, rear->bottom,
                     options.region.aimed ? 1 - options.region.up : 0.5);
  }
  return Moved(region, {options.region.shift_x, options.region.shift_y});
}

}  // namespace stopngo

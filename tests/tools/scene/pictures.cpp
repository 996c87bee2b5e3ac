// pictures.cpp: what tests of scenes render and compare.
#include "pictures.h"

#include <cstddef>
#include <cstdlib>

#include "scene/vehicle/driven_vehicle.h"

namespace stopngo::test {

Luma Rendered(Scene& scene, const SceneOptions& options, std::int64_t frame) {
  Luma picture(static_cast<std::size_t>(options.width) * static_cast<std::size_t>(options.height));
  scene.Render(frame, picture);
  return picture;
}

Luma Rendered(const SceneOptions& options, std::int64_t frame) {
  Scene scene(options);
  return Rendered(scene, options, frame);
}

double MeanDifference(const Luma& a, const Luma& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); i++) sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(a.size());
}

std::uint64_t HashOf(const Luma& bytes, std::uint64_t hash) {
  for (const std::uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001b3U;
  return hash;
}

SceneOptions Quiet(std::uint64_t seed) {
  SceneOptions options;
  options.width = 200;
  options.height = 120;
  options.length_s = 40;
  options.seed = seed;
  LeaveAt(options.lead, 2, 1.2);
  options.lead.tone = 110;  // dark paint would cut off noise
  options.camera.vibration = 0;
  options.sensor.noise = 0;
  return options;
}

SceneOptions Drawn(SceneKind kind, std::uint64_t seed) {
  SceneOptions options = DrawScene(kind, seed);
  options.width = 400;
  options.height = 240;
  options.fps = 8;
  return options;
}

double DistanceOfLead(const SceneOptions& options, double time_s) {
  return DrivenVehicle(options.lead, {4, 1e4}, options.seed).RearAt(time_s).pose.z;
}

}  // namespace stopngo::test

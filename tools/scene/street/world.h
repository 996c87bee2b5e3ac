// world.h: everything of a scene that stands still: road, kerbs, houses, trees, sky.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/random.h"
#include "scene/recipe/light.h"
#include "scene/recipe/recipe.h"
#include "scene/space/camera.h"

namespace stopngo {

/// Grey levels are light as the camera codes it, 16 (black) … 235 (white).
class World {
 public:
  /// stop_line_m: distance of the stop line, which the vehicle ahead has rolled up to; travel_m: how far
  /// our own vehicle drives, so that the world does not end too soon.
  World(const WorldOptions& options, const Light& light, double camera_height, double stop_line_m,
        double travel_m, std::uint64_t seed);
  /// The light from a direction: metres across and up for each metre ahead along the camera's axis.
  [[nodiscard]] float Shade(const Camera& camera, float across, float up) const;
  /// A row of the picture, of one ray a pixel.
  void Row(const Camera& camera, int row, std::span<float> light) const;
  /// Adds a quarter of one, whose rays pass through the part of a pixel that phase, 0 … 3, chooses.
  void RowPart(const Camera& camera, int row, int phase, std::span<float> light) const;

 private:
  struct House {
    float begin, end;  ///< along the street; of a house at its far end: across
    float height;
    float tone;
    float floor_height, bay_width;
    std::uint32_t seed;
  };
  struct Upright {  ///< a tree or a mast, flat and facing along the street
    enum class Kind { kTree, kMast, kSignal } kind;
    float x, z;
    float height;
    float width;
    std::uint32_t seed;
  };
  /// Measures across the street, metres from the middle of the own lane.
  struct Profile {
    float left_kerb, right_kerb;
    float left_houses, right_houses;
    float centre_line;
    double least_height, most_height;  ///< of houses; 0: there are none
    float upright_gap;                 ///< 0: none stand along the road
    bool junction;                     ///< it has a stop line, a crossing and signals
  };
  struct Ray {
    float x, y, z;  ///< direction, in the street's coordinates
    float from_x, from_z;
  };
  struct Hit {
    float distance;  ///< along the camera's axis
    float tone;
    float x, y, z;
    float glow = 0;
  };
  static constexpr float kNowhere = 1e9F;
  static Hit Nothing() { return {kNowhere, 0, 0, 0, 0}; }

  static Profile ProfileOf(WorldOptions::Style style, Random& random);
  void BuildHouses(Random& random);
  void BuildUprights(Random& random);
  /// The place that a ray has reached at a distance.
  [[nodiscard]] Hit Reached(const Ray& ray, float distance) const;
  [[nodiscard]] float Sky(const Ray& ray) const;
  [[nodiscard]] Hit Houses(const Ray& ray) const;
  [[nodiscard]] Hit Front(const Ray& ray, float distance, bool side) const;
  [[nodiscard]] Hit Ceiling(const Ray& ray) const;
  [[nodiscard]] Hit Ground(const Ray& ray) const;
  [[nodiscard]] Hit Wall(const Ray& ray, float distance, bool side) const;
  [[nodiscard]] float Road(float x, float z, float footprint) const;
  [[nodiscard]] float Wear(float x, float z) const;
  [[nodiscard]] float Markings(float x, float z) const;
  [[nodiscard]] float Pavement(float x, float z, float footprint) const;
  [[nodiscard]] float Field(float x, float z, float footprint) const;
  [[nodiscard]] bool UprightAt(const Upright& upright, float x, float y, Hit& hit) const;
  [[nodiscard]] bool Canopy(const Upright& upright, float x, float y, float& tone) const;
  [[nodiscard]] float Facade(const House& house, float along, float y, float light, float& glow) const;
  [[nodiscard]] float Seen(const Hit& hit, float across) const;

  WorldOptions options_;
  Light light_;
  Profile profile_;
  float camera_height_;
  float stop_line_;
  float end_;
  float reach_;  ///< how far one sees along the street
  float sun_edge_ = 0;
  float pool_phase_ = 0;  ///< of the street lamps
  float sky_bright_ = 0, sky_fall_ = 0, clouds_ = 0;
  std::uint32_t seed_ = 0;
  std::vector<House> left_, right_, far_;
  std::vector<Upright> uprights_;  ///< nearest first
};

}  // namespace stopngo

// scene_world.h: everything of a scene that stands still: road, kerbs, houses, trees, sky.
#pragma once

#include <cstdint>
#include <vector>

#include "scene_random.h"

namespace stopngo {

/// Where a ray from the camera leads: the world point (x, y, 1) metres ahead of the lens lies on it.
struct Ray {
  float x;
  float y;
};

/// Grey levels are light as the camera codes it, 16 (black) … 235 (white).
class World {
 public:
  /// stop_line_m: distance of the stop line, which the vehicle ahead has rolled up to.
  World(double camera_height, double stop_line_m, std::uint64_t seed);
  /// The grey level in a direction, of a point: who paints a picture takes the mean of several.
  [[nodiscard]] float Shade(Ray ray) const;

 private:
  struct House {
    float begin, end;  ///< along the street; of a house at its far end: across
    float height;
    float tone;
    float floor_height, bay_width;
    std::uint32_t seed;
  };
  struct Upright {  ///< a tree or a mast, flat and facing the camera
    enum class Kind { kTree, kMast, kSignal } kind;
    float x, z;
    float height;
    float width;
    std::uint32_t seed;
  };
  struct Hit {
    float z;
    float tone;
  };

  void BuildHouses(Random& random);
  void BuildUprights(Random& random);
  [[nodiscard]] float Sky(Ray ray) const;
  [[nodiscard]] Hit Houses(Ray ray) const;
  [[nodiscard]] Hit Ground(Ray ray) const;
  [[nodiscard]] float Road(float x, float z) const;
  [[nodiscard]] float Markings(float x, float z) const;
  [[nodiscard]] float Pavement(float x, float z) const;
  [[nodiscard]] bool UprightAt(const Upright& upright, float x, float y, float& tone) const;
  [[nodiscard]] static float Facade(const House& house, float along, float y, float light);

  float camera_height_;
  float stop_line_;
  std::uint32_t seed_;
  std::vector<House> left_, right_, far_;
  std::vector<Upright> uprights_;  ///< nearest first
};

}  // namespace stopngo

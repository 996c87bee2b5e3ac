// scene.h: what the contestants work on: camera-like pictures, textures that move by a few pixels, with noise.
#pragma once

#include <cstdint>
#include <vector>

namespace bench {

using Pixels = std::vector<std::uint8_t>;

/// What a detector can be shown. Only a moving texture takes every path of the search.
enum class Content { kMoving, kStill, kNoise, kFlat, kExtremes };
inline constexpr const char* kContentNames[] = {"moving", "still", "noise", "flat", "extremes"};

struct FramePair {
  Pixels before, after;
};

/// Two frames in a row.
FramePair MakeFrames(int width, int height, Content content);

/// Rectangles are {top, left, bottom, right}.
inline constexpr std::uint32_t kRegionWidth = 220;
inline constexpr std::uint32_t kRegionHeight = 140;
inline constexpr std::uint32_t kRegion[4] = {170, 290, 170 + kRegionHeight, 290 + kRegionWidth};
/// The same size, inside the frame decimated by 3.
inline constexpr std::uint32_t kSmallRegion[4] = {10, 20, 10 + kRegionHeight, 20 + kRegionWidth};

}  // namespace bench

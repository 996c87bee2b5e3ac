// squares.h: a texture of squares that moves: every block of it differs from its neighbours.
#pragma once

#include <cstddef>
#include <string>

namespace stopngo::test {

/// A luma plane; the texture has moved right and down by so many pixels, each at most 1000.
inline std::string Squares(int width, int height, int right, int down) {
  std::string plane(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), '\0');
  std::size_t at = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto u = static_cast<unsigned>(x - right + 1000) / 5;
      const auto v = static_cast<unsigned>(y - down + 1000) / 5;
      plane[at++] = static_cast<char>(((u * 2654435761U) ^ (v * 2246822519U)) >> 13);
    }
  }
  return plane;
}

}  // namespace stopngo::test

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

/// Which way the texture moves, pixels a picture.
struct SquaresMove {
  int right = 0;
  int down = 0;
};

/// So many pictures of the working size as Y4M: the texture stands in the first half of them and then moves.
inline std::string SquaresRecording(int fps, int pictures, SquaresMove move) {
  std::string video = "YUV4MPEG2 W800 H480 F" + std::to_string(fps) + ":1 Ip A1:1 Cmono\n";
  for (int i = 0; i < pictures; ++i) {
    const int moved = i < pictures / 2 ? 0 : i - pictures / 2 + 1;
    video.append("FRAME\n").append(Squares(800, 480, move.right * moved, move.down * moved));
  }
  return video;
}

}  // namespace stopngo::test

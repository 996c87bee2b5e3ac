// coder.h: a model of video compression: blocks that are kept or coded again, coarsely.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "scene/recipe/recipe.h"
#include "scene/space/window.h"

namespace stopngo {

/// What a decoder of H.264 shows is mostly the picture before: a block that differs from it only a little
/// is kept as it was, noise and all; another has its difference coded by a quantised cosine transform.
/// Every few seconds a whole picture is coded anew. Pictures are handed over in order of time.
class Coder {
 public:
  Coder(const SensorOptions& options, const PicturePart& frame);
  /// Replaces a picture by what a decoder makes of it.
  void Code(double time_s, std::span<std::uint8_t> picture);

 private:
  static constexpr int kSide = 8;
  using Block = std::array<float, kSide * kSide>;
  void CodeBlock(int left, int top, bool refresh, std::span<std::uint8_t> picture);
  /// Quantises in the cosine domain; false when nothing is left.
  bool Quantise(Block& block, float step) const;

  PicturePart frame_;
  float strength_;
  float step_;  ///< between levels of a coefficient, grey levels
  double refresh_s_;
  std::int64_t group_ = -1;  ///< of pictures since a refresh
  std::vector<std::uint8_t> decoded_;
};

}  // namespace stopngo

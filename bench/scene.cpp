// scene.cpp: pictures from a fixed seed, so that counts of instructions repeat.
#include "scene.h"

#include <algorithm>

#include "moving_picture.h"

namespace bench {
namespace {

/// The noise of a camera at dusk, a deviation of 7 grey levels. It decides what sorting costs: the plain
/// medians take a quarter less time on pictures that are nearly clean.
void AddNoise(Pixels& pixels, test::Random& random) {
  for (std::uint8_t& pixel : pixels) {
    const int noisy = pixel + static_cast<int>(random.Below(25)) - 12;
    pixel = static_cast<std::uint8_t>(std::clamp(noisy, 0, 255));
  }
}

}  // namespace

FramePair MakeFrames(int width, int height, Content content) {
  const std::size_t length = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  test::Random random(7);
  FramePair pair{Pixels(length, 128), Pixels(length, 128)};
  switch (content) {
    case Content::kFlat:
      return pair;
    case Content::kNoise:
    case Content::kExtremes:
      for (Pixels* frame : {&pair.before, &pair.after}) {
        random.Fill(*frame);
        if (content == Content::kNoise) continue;
        for (std::uint8_t& pixel : *frame) pixel = pixel < 128 ? 0 : 255;
      }
      return pair;
    case Content::kMoving:
    case Content::kStill:
      break;
  }
  test::MovingPicture picture(width, height, 7);
  pair.before = picture.Next();
  pair.after = content == Content::kStill ? pair.before : picture.Next();
  AddNoise(pair.before, random);
  AddNoise(pair.after, random);
  return pair;
}

}  // namespace bench

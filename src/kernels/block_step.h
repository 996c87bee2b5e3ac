// block_step.h: what the vector forms of the block search share: the order of the candidates and the move.
//
// The error of a candidate, times 16, plus its place in the order of trial is a key: the least key is the
// least error and among equal errors the earliest candidate, the centre (place 0) before all. One minimum
// over the keys is then the whole decision. Keys stay below 2^31 for errors below 2^27, which patches of up
// to 32 × 32 pixels (32 × 32 × 255^2 < 2^26) cannot reach.
#pragma once

#include <cstddef>

#include "bitclip.h"

namespace block_step {

constexpr int kPlaceBits = 4;
constexpr inte_32 kPlaces = (1 << kPlaceBits) - 1;
constexpr DATA_32 kLargestBlock = 32;

/// Directions by place: the centre, then its neighbours row by row.
struct Direction {
  inte_08 Y, X;
};
constexpr int kNeighbours = 8;
constexpr Direction kDirections[1 + kNeighbours] = {{0, 0}, {-1, -1}, {-1, 0}, {-1, 1}, {0, -1},
                                                    {0, 1}, {1, -1},  {1, 0},  {1, 1}};

/// How far the search of one block has come: the least key so far, its place taken off, and the position
/// relative to the block.
struct Progress {
  inte_32 Key;
  inte_32 Y, X;

  /// Takes the winner of a step.
  void Move(inte_32 Least, int Step) {
    const Direction& Way = kDirections[Least & kPlaces];
    Key = Least & ~kPlaces;
    Y += Way.Y * Step;
    X += Way.X * Step;
  }

  /// The vector points against the displacement in the previous image.
  void Store(inte_08* Motion) const {
    Motion[0] = static_cast<inte_08>(-Y);
    Motion[1] = static_cast<inte_08>(-X);
  }
};

/// The same for larger blocks, whose errors do not fit keys: the neighbours one after the other, as the plain form
/// takes them, with sums modulo 2^32.
struct LargeProgress {
  data_32 Error;
  inte_32 Y, X;

  void Move(const data_32 (&Errors)[kNeighbours], int Step) {
    Direction Way = kDirections[0];
    for (int k = 0; k < kNeighbours; ++k) {
      if (static_cast<inte_32>(Errors[k] - Error) >= 0) continue;
      Error = Errors[k];
      Way = kDirections[1 + k];
    }
    Y += Way.Y * Step;
    X += Way.X * Step;
  }

  void Store(inte_08* Motion) const {
    Motion[0] = static_cast<inte_08>(-Y);
    Motion[1] = static_cast<inte_08>(-X);
  }
};

}  // namespace block_step

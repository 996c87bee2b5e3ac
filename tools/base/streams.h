// streams.h: every stream of random numbers, in one table.
//
// Each subject draws from a stream of its own, so that a number more in one leaves the others as they were. Two
// streams of one seed with the same number would give two subjects the same numbers: the compiler compares them.
#pragma once

#include <array>
#include <cstdint>

#include "base/random.h"

namespace stopngo {

/// What a stream's seed is the seed of: the same numbers from different seeds have nothing in common.
enum class SeedOf { kScene, kTraining };

struct Stream {
  SeedOf seed;
  std::uint64_t first;      ///< its number
  std::uint64_t count = 1;  ///< how many numbers it has from there on, one a kind of its subject
};

namespace stream {

inline constexpr Stream kWorld{SeedOf::kScene, 0x30};
inline constexpr Stream kShake{SeedOf::kScene, 0x5a};
inline constexpr Stream kBody{SeedOf::kScene, 0x60};
inline constexpr Stream kBlink{SeedOf::kScene, 0x62};
inline constexpr Stream kScript{SeedOf::kScene, 0xae00, 0x100};
inline constexpr Stream kPaint{SeedOf::kScene, 0x7e};
inline constexpr Stream kWindscreen{SeedOf::kScene, 0x91};
inline constexpr Stream kActor{SeedOf::kScene, 0xac00, 0x100};
inline constexpr Stream kOverlay{SeedOf::kScene, 0xad00, 0x100};
inline constexpr Stream kLooks{SeedOf::kTraining, 0x4c};
inline constexpr Stream kStart{SeedOf::kTraining, 0x91};

inline constexpr std::array kAll{kWorld,      kShake, kBody,    kBlink, kScript, kPaint,
                                 kWindscreen, kActor, kOverlay, kLooks, kStart};

/// How many pairs of streams have a number in common.
constexpr int Collisions() {
  int collisions = 0;
  for (std::size_t i = 0; i < kAll.size(); ++i) {
    for (std::size_t j = i + 1; j < kAll.size(); ++j) {
      const Stream& a = kAll[i];
      const Stream& b = kAll[j];
      const bool apart = a.first + a.count <= b.first || b.first + b.count <= a.first;
      if (a.seed == b.seed && !apart) ++collisions;
    }
  }
  return collisions;
}

static_assert(Collisions() == 0, "a stream has numbers of another one");

}  // namespace stream

/// number: of the kind within the stream, below its count.
inline Random RandomOf(std::uint64_t seed, const Stream& stream, std::uint64_t number = 0) {
  return {seed, stream.first + number};
}

}  // namespace stopngo

// kernel_calls.h: random calls of every kernel, each of which can be made with any table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "fenced.h"
#include "kernels/kernels.h"
#include "random.h"

namespace test {

using Pixels = std::vector<std::uint8_t>;

/// A call drawn at random, with its inputs. Made with a table, its buffers fenced at the side given, it
/// returns the outputs, with the bytes between them that the kernel is to leave alone.
struct Call {
  std::string what;  ///< sizes and content, for messages
  std::function<Pixels(const KernelTable& table, Fenced::Side side)> make;
};

struct KernelCalls {
  const char* name;
  Call (*draw)(Random& random);
};

/// Every kernel of kernels.def, and every exported routine that reaches one with patterns of its own.
std::span<const KernelCalls> AllKernelCalls();

/// What pictures can hold. Ties and stripes give equal errors to many candidates of a search.
enum class Content { kNoise, kFlat, kMoved, kStill, kExtremes, kTies, kStripes };

/// Two pictures, one after the other in time, of length bytes in rows of width.
struct PicturePair {
  Content content;
  Pixels before, after;
  [[nodiscard]] std::string Name() const;
};
PicturePair DrawPictures(Random& random, std::size_t width, std::size_t length);

/// 1 … most: often 1, a prime, or beside a multiple of a vector's length.
std::uint32_t DrawSize(Random& random, std::uint32_t most);

/// The crops, in kernel_crops.cpp.
Call DrawResample(Random& random);
Call DrawDecimationInPlace(Random& random);
Call DrawCropping(Random& random);
Call DrawOriginalCropping(Random& random);
Call DrawDecimation(Random& random);

}  // namespace test

// luma.h: luma planes as they are handed to the module.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace stopngo {

struct FrameSize {
  int width = 0;
  int height = 0;
  bool operator==(const FrameSize&) const = default;
};

/// The frames that the module takes in full resolution. They stand for a working size of 800 × 480.
inline constexpr std::array kOriginalSizes{FrameSize{1920, 1080}, FrameSize{1280, 720}};

/// The full resolution that settings announce; nothing where frames are of the working size, as those of a
/// working width that happens to be one of the two are.
inline std::optional<FrameSize> OriginalSize(int original_width, int working_width) {
  for (const FrameSize& size : kOriginalSizes) {
    if (size.width == original_width && original_width != working_width) return size;
  }
  return std::nullopt;
}

inline bool IsOriginalSize(const FrameSize& size) { return std::ranges::count(kOriginalSizes, size) > 0; }

/// No plane has longer sides: a damaged header or a slip of the keyboard must not make anybody allocate more.
inline constexpr int kLongestSide = 16384;

inline bool IsUsableSize(const FrameSize& size) {
  const auto usable = [](int side) { return side >= 1 && side <= kLongestSide; };
  return usable(size.width) && usable(size.height);
}

/// Frames a second where nothing tells them.
inline constexpr double kUnknownRate = 25;

/// One luma plane: width × height bytes, rows without padding.
struct LumaFrame {
  int width = 0;
  int height = 0;
  std::int64_t index = 0;  ///< frame number in the input, from 0
  double time_s = 0;       ///< seconds from the first frame of the input
  std::vector<std::uint8_t> pixels;
  std::chrono::steady_clock::time_point read{};  ///< when it came from the input
};

/// The same in memory of somebody else.
struct LumaView {
  int width = 0;
  int height = 0;
  std::int64_t index = 0;
  double time_s = 0;
  std::span<const std::uint8_t> pixels;
};

inline LumaView ViewOf(const LumaFrame& frame) {
  return {frame.width, frame.height, frame.index, frame.time_s, frame.pixels};
}

/// Frames that follow one another.
struct FrameFormat {
  int width = 0;
  int height = 0;
  double fps = 0;  ///< frames a second that are handed over
  bool operator==(const FrameFormat&) const = default;
};

}  // namespace stopngo

// waves.h: pictures that coders keep well, none like another, in no way symmetrical.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "video/open_sink.h"
#include "video/open_source.h"

namespace stopngo::test {

using Luma = std::vector<std::uint8_t>;

inline Luma Waves(int width, int height, std::int64_t frame) {
  Luma picture;
  for (int y = 0; y < height; y++) {
    for (int x = 0; x < width; x++) {
      const double across = std::sin(0.02 * static_cast<double>(x - 3 * frame));
      picture.push_back(static_cast<std::uint8_t>(110 + 60 * across + 0.2 * y));
    }
  }
  return picture;
}

inline double MeanDifference(const Luma& a, const Luma& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); i++) sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(a.size());
}

/// A recording of so many frames, as the path's ending asks for.
inline void Record(const std::string& path, int width, int height, double fps, std::int64_t frames) {
  OutputFile file(path);
  const auto sink = OpenSink({path, width, height, fps, PixelFormat::kGray}, file);
  for (std::int64_t i = 0; i < frames; i++) sink->Write(Waves(width, height, i));
  sink->Finish();
  file.Commit();
}

/// All frames that an input gives.
inline std::vector<LumaFrame> FramesOf(const SourceOptions& options) {
  const auto source = OpenSource(options);
  std::vector<LumaFrame> frames;
  for (LumaFrame frame; source->Next(frame);) frames.push_back(frame);
  return frames;
}

}  // namespace stopngo::test

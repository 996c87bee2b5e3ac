// live_kind.cpp: which inputs are live, and how each is to be read.
#include "live/live_kind.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace stopngo {
namespace {

constexpr std::array<std::string_view, 6> kDeviceFormats{"v4l2",    "video4linux2", "x11grab",
                                                         "kmsgrab", "fbdev",        "decklink"};
constexpr std::array<std::string_view, 10> kProtocols{
    "rtsp:", "rtsps:", "rtmp:", "rtmps:", "rtp:", "srtp:", "srt:", "udp:", "tcp:", "mmsh:"};
constexpr std::string_view kDrawn = "lavfi";  // FFmpeg's own pictures

bool IsRegular(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

}  // namespace

bool IsLive(const SourceOptions& options) {
  if (std::ranges::count(kDeviceFormats, options.format) > 0) return true;
  if (options.format.empty() && options.input.starts_with("/dev/video")) return true;
  if (IsRegular(options.input)) return false;
  return std::ranges::any_of(
      kProtocols, [&options](std::string_view protocol) { return options.input.starts_with(protocol); });
}

LiveLimits LimitsFor(const SourceOptions& options, LiveLimits limits) {
  const bool standard = options.input == "-";
  const bool drawn = options.format == kDrawn;
  const bool file = !standard && !drawn && IsRegular(options.input);
  limits.reopens = !standard;
  limits.ends = standard || file || drawn;
  limits.paced = file || drawn;
  return limits;
}

}  // namespace stopngo

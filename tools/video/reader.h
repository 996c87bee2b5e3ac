// reader.h: what OpenSource chooses from: readers that give frames as the input has them.
#pragma once

#include <memory>
#include <string>

#include "host/common/failure.h"
#include "host/common/text.h"
#include "video/frame_source.h"

namespace stopngo {

/// What readers say where luma spreads from 0 to 255: recordings mostly have 16 to 235.
inline constexpr const char* kFullRange = "its luma is of full range, 0 to 255, and is taken as it is";
inline constexpr const char* kInterlaced =
    "its pictures are interlaced: two moments each, which looks like motion";
/// "its pixels are 16:15, and are taken for square ones".
inline std::string PixelRemark(int across, int down) {
  return Print("its pixels are %d:%d, and are taken for square ones", across, down);
}
/// How inputs are named to the user.
inline std::string NameOf(const SourceOptions& options) {
  return options.input == "-" ? "standard input" : WithoutPassword(options.input);
}

/// Of an input that has the size and the rate that it has.
inline Failure CannotBeAsked(const std::string& option, const SourceOptions& options) {
  return Failure(option + ": " + NameOf(options) + " cannot be asked for it", ExitCode::kUsage);
}

/// Y4M (8 bits, or monochrome) or, with a raw size, raw luma; from a file or standard input.
std::unique_ptr<FrameSource> OpenPlain(const SourceOptions& options);
/// Whether a file starts as Y4M does.
bool IsY4m(const std::string& path);

/// Anything that FFmpeg reads. Only built with FFmpeg.
std::unique_ptr<FrameSource> OpenFfmpeg(const SourceOptions& options);

}  // namespace stopngo

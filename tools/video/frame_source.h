// frame_source.h: where luma frames come from: video files, image sequences, cameras, Y4M, raw luma.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "host/common/luma.h"
#include "video/packet_tap.h"
#include "video/remark.h"

namespace stopngo {

/// What can be said of an input before its frames are read.
struct SourceInfo : FrameFormat {      ///< of the frames that Next gives, after --rate
  std::optional<std::int64_t> frames;  ///< how many Next will give, where the input tells
  std::string description;             ///< for the user: name, size, rate
};

struct SourceOptions {
  std::string input;   ///< file, pattern of an image sequence, device, or "-" for standard input
  std::string format;  ///< FFmpeg input format, such as "v4l2" for a camera; empty: by content
  int width = 800;     ///< wanted frame size; other sizes are scaled to it
  int height = 480;
  bool original = false;  ///< hand 1920 × 1080 and 1280 × 720 frames over as they are
  double rate = 0;    ///< frames a second to hand over (the nearest ones, all where there are fewer); 0: all
  int raw_width = 0;  ///< raw luma: size of the planes; 0: not raw
  int raw_height = 0;
  double raw_fps = 25;
  RemarkHearer hear;  ///< of what the input is that it does not seem to be

  // Of cameras and streams:
  bool live = false;       ///< frames are wanted when they come: none is kept back to decode others faster
  std::string asked_size;  ///< what a camera is asked for, such as "1280x720"; empty: its own choice
  double asked_fps = 0;    ///< 0: its own choice
  std::function<bool()>
      gives_up;              ///< asked while the input is waited for, on the reading thread: true ends it
  PacketTap* tap = nullptr;  ///< receives what comes in, before it is decoded; outlives the source
};

class FrameSource {
 public:
  virtual ~FrameSource() = default;
  [[nodiscard]] virtual const SourceInfo& Info() const = 0;
  /// Reads the next frame into frame (its vector is reused); false at the end, which damage may bring before its
  /// time. Throws Failure.
  virtual bool Next(LumaFrame& frame) = 0;
};

}  // namespace stopngo

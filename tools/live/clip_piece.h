// clip_piece.h: what clips are made of: packets of an encoded input, or the frames of one that is not.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "host/common/luma.h"

struct AVCodecParameters;
struct AVPacket;
struct AVStream;

namespace stopngo {

/// What a stream's packets are to be understood by, on their own.
struct ClipStream {
  std::shared_ptr<AVCodecParameters> parameters;
  int unit_numerator = 0;  ///< of the packets' times, in seconds
  int unit_denominator = 1;
  std::string codec;
};

/// Either a packet with its stream, or a frame.
struct ClipPiece {
  std::chrono::steady_clock::time_point at;  ///< when it came
  bool key = true;                           ///< a clip can start with it
  std::size_t bytes = 0;
  std::shared_ptr<const ClipStream> stream;
  std::shared_ptr<const AVPacket> packet;
  std::shared_ptr<const LumaFrame> frame;
};

/// Null for a stream whose packets are plain pictures: they would take too much, and come as frames as well.
std::shared_ptr<const ClipStream> StreamOf(const AVStream& stream);
/// Whether packets of both can be in one file: it tells once what they are to be understood by.
bool IsAlike(const ClipStream& a, const ClipStream& b);
/// A copy: a camera has few buffers of its own, and waits for those that are kept.
ClipPiece PieceOf(const AVPacket& packet, const std::shared_ptr<const ClipStream>& stream);

}  // namespace stopngo

// packet_writer.h: writes packets as they are into a Matroska file. Only used with FFmpeg.
#pragma once

#include <memory>
#include <string>

#include "base/output_file.h"
#include "live/clip_piece.h"

namespace stopngo {

class PacketWriter {
 public:
  virtual ~PacketWriter() = default;
  /// Throws Failure.
  virtual void Write(const ClipPiece& piece) = 0;
  /// What is still to come; the file can be committed then.
  virtual void Finish() = 0;
};

/// file: that of the path; it has to outlive the writer. first: a key packet, which is not written yet.
std::unique_ptr<PacketWriter> OpenPacketWriter(const std::string& path, OutputFile& file,
                                               const ClipPiece& first);

}  // namespace stopngo

// packet_tap.h: who wants the packets of an encoded input as they come, beside its pictures.
#pragma once

struct AVPacket;
struct AVStream;

namespace stopngo {

/// Called on the thread that reads the input. What is handed over belongs to the reader.
class PacketTap {
 public:
  PacketTap() = default;
  virtual ~PacketTap() = default;
  PacketTap(const PacketTap&) = delete;
  PacketTap& operator=(const PacketTap&) = delete;

  /// The video stream that packets are going to be of: once an input, and anew when it was opened anew.
  virtual void Stream(const AVStream& stream) = 0;
  /// Times are in the stream's units.
  virtual void Packet(const AVPacket& packet) = 0;
};

}  // namespace stopngo

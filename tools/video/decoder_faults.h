// decoder_faults.h: what decoders say of faults in what they decode. Only used with FFmpeg.
#pragma once

#include <atomic>

#include "video/ffmpeg_calls.h"

namespace stopngo {

/// Where threads take a picture each, the properties of one may be handed over before the thread that decodes it has
/// marked it as damaged: it depends on their pace whether the mark is seen. What a decoder writes to FFmpeg's log is
/// complete.
class DecoderFaults {
 public:
  DecoderFaults() = default;
  DecoderFaults(const DecoderFaults&) = delete;
  DecoderFaults& operator=(const DecoderFaults&) = delete;

  /// Before the decoder is opened; it has to go before this does.
  void ListenTo(AVCodecContext& decoder);
  /// Whether anything was said since the last call.
  bool Take() { return said_.exchange(false); }

 private:
  static void Hear(void* speaker, int level, const char* format, va_list values);

  std::atomic<bool> said_{false};
};

}  // namespace stopngo

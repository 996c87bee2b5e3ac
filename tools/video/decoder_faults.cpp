// decoder_faults.cpp: what decoders say of faults in what they decode.
#include "video/decoder_faults.h"

#include <cstring>

namespace stopngo {

void DecoderFaults::ListenTo(AVCodecContext& decoder) {
  decoder.opaque = this;  // of the copies that its threads have, too
  av_log_set_callback(Hear);
}

// On any thread. Nothing is printed: the one sentence of a remark says what a user needs.
void DecoderFaults::Hear(void* speaker, int level, const char* /*format*/, va_list /*values*/) {
  if (speaker == nullptr || level > AV_LOG_ERROR) return;
  const AVClass* const kind = *static_cast<const AVClass* const*>(speaker);
  if (kind == nullptr || std::strcmp(kind->class_name, "AVCodecContext") != 0) return;
  auto* const faults = static_cast<DecoderFaults*>(static_cast<AVCodecContext*>(speaker)->opaque);
  if (faults != nullptr) faults->said_ = true;
}

}  // namespace stopngo

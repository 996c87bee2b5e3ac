// refusal.h: whether a frame can be processed without leaving a buffer.
#pragma once

#include <cstdint>

#include "crop.h"
#include "vel_stopngo_ctx.h"

/// The frame that the host hands over, as the settings declare it, and what is sampled from it.
struct FrameInput {
  bool Original;  ///< full resolution, with patterns of its own
  DATA_32 EndY, EndX;
  Sampling Source;
};

/// Bytes that the buffers of this frame have.
struct BufferSizes {
  std::uint64_t Current;   ///< the buffer that receives the frame
  std::uint64_t Previous;  ///< the buffer of the frame before; not used on a first frame
};

/// Works out the last byte that the coming steps would read and write, in arithmetic that cannot wrap, and
/// holds it against the frame and the buffers. Analyse: whether matching, histogram and score follow.
/// Returns null when all fits, otherwise the reason why not.
const char* RefusalReason(const VEL_STOPNGO_CTX& ctx, const FrameInput& Input, const BufferSizes& Sizes,
                          bool FirstFrame, bool Analyse);

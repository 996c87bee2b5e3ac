// mirror.h: the analysis buffer shown in the host's debug framebuffer.
#pragma once

#include <cstdint>

#include "vel_stopngo_ctx.h"

/// Bytes from the start of the analysis buffer that the mirror reads; 0 without a framebuffer.
std::uint64_t MirrorExtent(const VEL_STOPNGO_CTX& ctx);

/// Copies FrameNew to the framebuffer's top-left corner as opaque grey, clipped to the framebuffer.
void Mirror(const VEL_STOPNGO_CTX& ctx);

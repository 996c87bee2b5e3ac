// debug_picture.h: the debug framebuffer as a picture file.
#pragma once

#include <ostream>

#include "vel_stopngo_ctx.h"

namespace stopngo {

/// Writes the framebuffer that the detector mirrors into as a binary PPM.
void WriteDebugPicture(std::ostream& file, const VEL_STOPNGO_CTX& context);

}  // namespace stopngo

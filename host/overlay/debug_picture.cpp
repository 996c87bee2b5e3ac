// debug_picture.cpp: the debug framebuffer as a picture file.
#include "host/overlay/debug_picture.h"

#include <cstddef>

namespace stopngo {

void WriteDebugPicture(std::ostream& file, const VEL_STOPNGO_CTX& context) {
  file << "P6\n" << context.debug_fb_width << ' ' << context.debug_fb_height << "\n255\n";
  const std::size_t pixels = std::size_t{context.debug_fb_width} * context.debug_fb_height;
  for (std::size_t i = 0; i < pixels; ++i) {
    // The framebuffer's pixels are little-endian words: blue first, then green, red and opacity.
    const char* const pixel = context.debug_fb + 4 * i;
    file.put(pixel[2]).put(pixel[1]).put(pixel[0]);
  }
}

}  // namespace stopngo

// kept_fonts.cpp: what libraries keep of fonts for the next text.
#include "host/draw/kept_fonts.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <cstdlib>

namespace stopngo {

void ForgetFontsAtEnd() {
  static const int registered = std::atexit([] {
    cairo_debug_reset_static_data();
    FcFini();
  });
  (void)registered;
}

}  // namespace stopngo

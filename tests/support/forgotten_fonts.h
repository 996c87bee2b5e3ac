// forgotten_fonts.h: for tests that draw text: what is left of the heap at their end is a leak.
#pragma once

#include "host/draw/kept_fonts.h"

namespace stopngo::test {

inline const bool kFontsAreForgotten = (ForgetFontsAtEnd(), true);

}  // namespace stopngo::test

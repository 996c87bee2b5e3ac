// kept_fonts.h: what libraries keep of fonts for the next text.
#pragma once

namespace stopngo {

/// Cairo and Fontconfig are told at the end of the program that no text comes, so that what is left of the heap then is
/// a leak. For a program that draws alone: in one of somebody else they may have other users.
void ForgetFontsAtEnd();

}  // namespace stopngo

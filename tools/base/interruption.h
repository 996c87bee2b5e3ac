// interruption.h: lets Ctrl-C end a long run as if its input had ended.
#pragma once

namespace stopngo {

/// From now on the first interruption only raises a flag; the next one ends the program, even if the
/// input gives no more frames. To be called when the input is open, which may take for ever, and before
/// any output is: an unfinished file is removed only by a program that ends by itself.
void CatchInterruption();

/// Whether the flag is up.
[[nodiscard]] bool Interrupted();

}  // namespace stopngo

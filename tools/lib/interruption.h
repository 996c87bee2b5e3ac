// interruption.h: lets Ctrl-C end a long run as if its input had ended.
#pragma once

namespace stopngo {

/// From now on the first interruption only raises a flag; the next one ends the program, even if the
/// input gives no more frames.
void CatchInterruption();

/// Whether the flag is up.
[[nodiscard]] bool Interrupted();

}  // namespace stopngo

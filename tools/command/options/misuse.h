// misuse.h: what is wrong with a command line that the parser cannot take.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace stopngo {

/// After parsing: the word that has no place, with the known one that may be meant; else the parser's own fault. What
/// was not understood says more than what is missing for want of it. Empty where nothing is wrong.
std::string MisuseOf(const CLI::App& app, const std::string& fault);

}  // namespace stopngo

// completion.h: what the shells are told of the command line.
#pragma once

#include <string>

#include "reference/command_table.h"

namespace stopngo {

// Each is a whole script, for the shell's folder of completions.
std::string BashCompletion(const CommandTable& table);
std::string ZshCompletion(const CommandTable& table);
std::string FishCompletion(const CommandTable& table);

}  // namespace stopngo

// table_of.h: the command line as data, taken from the parser that reads it.
#pragma once

#include "reference/command_table.h"

namespace CLI {
class App;
}

namespace stopngo {

/// Of the program: all that --help shows of it and of its subcommands, and what takes the place of hidden words.
CommandTable TableOf(const CLI::App& app);

}  // namespace stopngo

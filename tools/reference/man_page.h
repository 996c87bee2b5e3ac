// man_page.h: man pages, in the language of scdoc(5): what a person wrote, with the tables put in.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "reference/command_table.h"

namespace stopngo {

struct ManualSources {
  std::string version;
  CommandTable commands;
  std::function<std::string(const std::string& name)> read;  ///< a text beside the page's, by its name
};

/// A page by its text, docs/man/NAME.SECTION.scd: lines that are nothing but a word such as @OPTIONS@ are replaced by
/// what the tables say, @FILE name@ by a text beside it. Throws Failure for a word or a subcommand that is not known.
std::string ManPage(const std::string& file_name, std::string_view text, const ManualSources& sources);

}  // namespace stopngo

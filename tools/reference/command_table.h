// command_table.h: the command line as data: what man pages and shell completions are made of.
#pragma once

#include <string>
#include <vector>

namespace stopngo {

/// What a shell offers where a value is wanted.
enum class ValueKind {
  kNone,  ///< a flag has no value
  kText,  ///< nothing can be offered
  kFile,
  kFolder,
  kChoice,   ///< one of the row's choices
  kChoices,  ///< any of them, with commas between
};

/// An option or a positional argument.
struct OptionRow {
  std::vector<std::string> names;  ///< "-o", "--output"; of a positional argument its one name
  ValueKind kind = ValueKind::kNone;
  std::string value;  ///< what stands for the value: "FILE"; empty: none
  std::vector<std::string> choices;
  std::string range;  ///< values that are taken, in words; empty: nothing to be said
  std::string usual;  ///< the default; empty: none
  std::string help;
  std::vector<std::string> excludes;  ///< options that it does not go together with
  std::string group;                  ///< the heading that it stands below: "Settings"
  bool required = false;
  bool repeated = false;
};

/// A subcommand, or the whole program.
struct CommandRow {
  std::string name;
  std::string help;    ///< a line
  std::string footer;  ///< prose, then examples behind a line "Examples:"
  std::vector<OptionRow> positionals;
  std::vector<OptionRow> options;
};

struct CommandTable {
  CommandRow program;
  std::vector<CommandRow> subcommands;
};

}  // namespace stopngo

// fish_completion.cpp: what fish is told of the command line.
#include <string_view>

#include "host/common/text.h"
#include "reference/completion.h"

namespace stopngo {
namespace {

std::string InQuotes(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '\'';
}

/// What is offered as a value, as flags of complete.
std::string FishValue(const OptionRow& row) {
  switch (row.kind) {
    case ValueKind::kNone:
      return "";
    case ValueKind::kFile:
      return " -r -F";
    case ValueKind::kFolder:
      return " -x -a '(__fish_complete_directories)'";
    case ValueKind::kChoice:
      return " -x -a " + InQuotes(Joined(row.choices, " "));
    case ValueKind::kChoices:
      return " -x -a " +
             InQuotes("(__fish_complete_list , 'printf %s\\\\n " + Joined(row.choices, " ") + "')");
    case ValueKind::kText:
      return " -x";
  }
  return "";
}

std::string FishOption(const OptionRow& row, const std::string& when) {
  std::string text = "complete -c stopngo -n " + InQuotes(when);
  for (const std::string& name : row.names) {
    text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  return text + FishValue(row) + " -d " + InQuotes(row.help) + '\n';
}

}  // namespace

std::string FishCompletion(const CommandTable& table) {
  std::string text =
      "# Completion of stopngo for fish, as `stopngo completion fish` writes it.\n\ncomplete -c stopngo -f\n";
  const std::string none = "__fish_use_subcommand";
  for (const OptionRow& row : table.program.options) text += FishOption(row, none);
  for (const CommandRow& command : table.subcommands) {
    text += "complete -c stopngo -n " + InQuotes(none) + " -a " + command.name + " -d " +
            InQuotes(command.help) + '\n';
  }
  for (const CommandRow& command : table.subcommands) {
    const std::string within = "__fish_seen_subcommand_from " + command.name;
    text += '\n';
    for (const OptionRow& row : command.options) text += FishOption(row, within);
    if (command.positionals.empty()) continue;
    const std::string value = FishValue(command.positionals.front());
    text += "complete -c stopngo -n " + InQuotes(within) + value + '\n';
  }
  return text;
}

}  // namespace stopngo

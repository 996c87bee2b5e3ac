// zsh_completion.cpp: what zsh is told of the command line.
#include <string_view>
#include <vector>

#include "host/common/text.h"
#include "reference/completion.h"

namespace stopngo {
namespace {

/// A text inside quotes, where brackets and colons part what _arguments is told.
std::string Told(std::string_view text) {
  std::string told;
  for (const char c : text) {
    if (c == '\'') {
      told += R"('\'')";
      continue;
    }
    if (c == '\\' || c == '[' || c == ']' || c == ':') told += '\\';
    told += c;
  }
  return told;
}

std::string Action(const OptionRow& row) {
  const std::string words = Joined(row.choices, " ");
  switch (row.kind) {
    case ValueKind::kFile:
      return "_files";
    case ValueKind::kFolder:
      return "_files -/";
    case ValueKind::kChoice:
      return '(' + words + ')';
    case ValueKind::kChoices:
      return "_sequence compadd - " + words;
    default:
      return "";
  }
}

/// An option under one of its names, with nothing offered twice that is given once.
std::string ZshOption(const OptionRow& row, const std::string& name) {
  std::string others = Joined(row.names, " ");
  for (const std::string& each : row.excludes) others += ' ' + each;
  std::string text = "'" + (row.repeated ? "*" : '(' + others + ')') + name;
  if (row.kind != ValueKind::kNone && name.starts_with("--")) text += '=';
  text += '[' + Told(row.help) + ']';
  if (row.kind != ValueKind::kNone) text += ':' + Told(row.value) + ':' + Action(row);
  return text + '\'';
}

std::string ZshFunction(const std::string& name, const CommandRow& command) {
  std::vector<std::string> lines;
  for (const OptionRow& row : command.options) {
    for (const std::string& each : row.names) lines.push_back(ZshOption(row, each));
  }
  for (const OptionRow& row : command.positionals) {
    lines.push_back(std::string("'") + (row.repeated ? "*" : "") + (row.required ? ":" : "::") +
                    Told(row.names.front()) + ':' + Action(row) + '\'');
  }
  std::string text = name + "() {\n  _arguments -s";
  for (const std::string& line : lines) text += " \\\n    " + line;
  return text + "\n}\n\n";
}

constexpr const char* kZshHead =
    "#compdef stopngo\n# Completion of stopngo for zsh, as `stopngo completion zsh` writes it.\n\n";

constexpr const char* kZshMain = R"(_stopngo() {
  if (( CURRENT > 2 )) && (( $+functions[_stopngo_$words[2]] )); then
    local command=$words[2]
    shift words
    (( CURRENT-- ))
    _stopngo_$command
    return
  fi
  _stopngo_program
  local -a commands
  commands=(
@COMMANDS@  )
  _describe command commands
}

_stopngo "$@"
)";

}  // namespace

std::string ZshCompletion(const CommandTable& table) {
  std::string text = kZshHead + ZshFunction("_stopngo_program", table.program);
  std::string commands;
  for (const CommandRow& command : table.subcommands) {
    text += ZshFunction("_stopngo_" + command.name, command);
    commands += "    '" + command.name + ':' + Told(command.help) + "'\n";
  }
  constexpr std::string_view kCommands = "@COMMANDS@";
  std::string main = kZshMain;
  main.replace(main.find(kCommands), kCommands.size(), commands);
  return text + main;
}

}  // namespace stopngo

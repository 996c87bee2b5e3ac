// bash_completion.cpp: what bash is told of the command line.
#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "host/common/text.h"
#include "reference/completion.h"

namespace stopngo {
namespace {

// Words of ours hold nothing that a shell would take for more.

/// What offers a row's values to the word in $1.
std::string Offer(const OptionRow& row) {
  switch (row.kind) {
    case ValueKind::kFile:
      return "_stopngo_files -f \"$1\"";
    case ValueKind::kFolder:
      return "_stopngo_files -d \"$1\"";
    case ValueKind::kChoice:
      return "_stopngo_words \"$1\" " + Joined(row.choices, " ");
    case ValueKind::kChoices:
      return "_stopngo_list \"$1\" " + Joined(row.choices, " ");
    default:
      return "";
  }
}

/// A function that completes the word $1 of a command behind the option $2.
std::string BashFunction(const std::string& name, const CommandRow& command, const std::string& words) {
  std::map<std::string, std::vector<std::string>> offers;  // the options that make them
  std::vector<std::string> options;
  for (const OptionRow& row : command.options) {
    options.insert(options.end(), row.names.begin(), row.names.end());
    if (row.kind == ValueKind::kNone) continue;
    std::vector<std::string>& named = offers[Offer(row)];
    named.insert(named.end(), row.names.begin(), row.names.end());
  }
  std::string text = name + "() {\n  case $2 in\n";
  for (const auto& [offer, names] : offers) {
    text += "    " + Joined(names, " | ") + ") " + offer + (offer.empty() ? "" : "; ") + "return ;;\n";
  }
  text += "  esac\n  case $1 in\n    -*) _stopngo_words \"$1\" " + Joined(options, " ") + " ;;\n    *) ";
  text += words.empty() ? ":" : words;
  return text + " ;;\n  esac\n}\n\n";
}

constexpr const char* kBashHelpers =
    R"(# Completion of stopngo for bash, as `stopngo completion bash` writes it.

_stopngo_words() { mapfile -t COMPREPLY < <(compgen -W "${*:2}" -- "$1"); }

_stopngo_files() {
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
  compopt -o filenames 2>/dev/null
}

# The last of several words with commas between.
_stopngo_list() {
  local before=
  [[ $1 == *,* ]] && before=${1%,*},
  mapfile -t COMPREPLY < <(compgen -P "$before" -W "${*:2}" -- "${1##*,}")
  compopt -o nospace 2>/dev/null
}

)";

// An = parts words here; what stands before it is the option.
constexpr const char* kBashMain = R"(_stopngo() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} each command=
  if [[ $word == "=" ]]; then
    word=
  elif [[ $before == "=" ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  COMPREPLY=()
  for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ $each != -* ]]; then
      command=$each
      break
    fi
  done
  case $command in
    "") _stopngo_program "$word" "$before" ;;
    @COMMANDS@) "_stopngo_$command" "$word" "$before" ;;
  esac
}

complete -F _stopngo stopngo
)";

/// Of the first positional argument, which stands for those behind it: files all of them, where there are several.
std::string PositionalOffer(const CommandRow& command) {
  return command.positionals.empty() ? "" : Offer(command.positionals.front());
}

}  // namespace

std::string BashCompletion(const CommandTable& table) {
  std::vector<std::string> names;
  names.reserve(table.subcommands.size());
  for (const CommandRow& command : table.subcommands) names.push_back(command.name);
  std::string text = kBashHelpers + BashFunction("_stopngo_program", table.program,
                                                 "_stopngo_words \"$1\" " + Joined(names, " "));
  for (const CommandRow& command : table.subcommands) {
    text += BashFunction("_stopngo_" + command.name, command, PositionalOffer(command));
  }
  constexpr std::string_view kCommands = "@COMMANDS@";
  std::string main = kBashMain;
  main.replace(main.find(kCommands), kCommands.size(), Joined(names, " | "));
  return text + main;
}

}  // namespace stopngo

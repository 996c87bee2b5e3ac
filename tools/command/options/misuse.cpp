// misuse.cpp: what is wrong with a command line that the parser cannot take.
#include "command/options/misuse.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <vector>

#include "host/common/spelling.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

/// What is wrong with the first word that a part of the command line has no place for; empty where there is none.
std::string MisplacedWord(const CLI::App& part, const std::string& command) {
  std::vector<std::string> words = part.remaining();
  // Nothing behind -- is an option; the mark itself is left over wherever it stands.
  const auto mark = std::ranges::find(words, "--");
  // An option that is not known drags its value along.
  const auto option =
      std::find_if(words.begin(), mark, [](const auto& word) { return word.size() > 1 && word[0] == '-'; });
  if (option != mark) {
    const std::string name = option->substr(0, option->find('='));
    std::vector<std::string> known;
    for (const CLI::Option* each : part.get_options()) {
      for (const std::string& long_name : each->get_lnames()) known.push_back("--" + long_name);
    }
    return name + ": " + command + " has no such option" + MeantBy(name, known) + " (see " + command +
           " --help)";
  }
  if (mark != words.end()) words.erase(mark);
  if (words.empty()) return {};
  return Quoted(words.front()) + ": one argument too many for " + command;
}

std::string UnknownCommand(const CLI::App& app, const std::string& word) {
  const std::vector<const CLI::App*> commands = app.get_subcommands([](const CLI::App*) { return true; });
  std::vector<std::string> known(commands.size());
  std::ranges::transform(commands, known.begin(), &CLI::App::get_name);
  return Quoted(word) + ": no such command" + MeantBy(word, known) + " (see stopngo --help)";
}

}  // namespace

std::string MisuseOf(const CLI::App& app, const std::string& fault) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  const std::vector<std::string> words = app.remaining();
  if (chosen.empty() && !words.empty() && words.front()[0] != '-') return UnknownCommand(app, words.front());
  if (chosen.empty() && words.empty()) return "a command is missing (see stopngo --help)";
  std::string misplaced = MisplacedWord(app, "stopngo");
  if (misplaced.empty() && !chosen.empty()) {
    misplaced = MisplacedWord(*chosen.front(), "stopngo " + chosen.front()->get_name());
  }
  return misplaced.empty() ? fault : misplaced;
}

}  // namespace stopngo

// completion.cpp: stopngo completion: what a shell is to be told of this command line.
#include "reference/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iostream>
#include <string>
#include <vector>

#include "command/options/table_of.h"
#include "command/subcommand.h"

namespace stopngo {
namespace {

constexpr const char* kCompletionFooter =
    R"(Packages install the scripts where the shells look for them. Without one, a line in the shell's start-up file does.

Examples:
  source <(stopngo completion bash)
  stopngo completion zsh > ~/.zfunc/_stopngo
  stopngo completion fish > ~/.config/fish/completions/stopngo.fish)";

struct Shell {
  const char* name;
  std::string (*script)(const CommandTable& table);
};

constexpr std::array kShells{Shell{"bash", BashCompletion}, Shell{"zsh", ZshCompletion},
                             Shell{"fish", FishCompletion}};

class CompletionCommand : public Subcommand {
 public:
  explicit CompletionCommand(CLI::App& app);
  void Complete() override {}
  void Run() override;

 private:
  const CLI::App& app_;
  std::string shell_;
};

CompletionCommand::CompletionCommand(CLI::App& app) : app_(app) {
  std::vector<std::string> names;
  names.reserve(kShells.size());
  for (const Shell& shell : kShells) names.emplace_back(shell.name);
  app.footer(kCompletionFooter);
  app.add_option("SHELL", shell_, "the shell that asks")
      ->required()
      ->type_name("NAME")
      ->check(CLI::IsMember(names));
}

void CompletionCommand::Run() {
  const auto shell = std::ranges::find(kShells, shell_, &Shell::name);
  std::cout << shell->script(TableOf(*app_.get_parent()));
}

}  // namespace

std::unique_ptr<Subcommand> DeclareCompletion(CLI::App& app) {
  return std::make_unique<CompletionCommand>(app);
}

}  // namespace stopngo

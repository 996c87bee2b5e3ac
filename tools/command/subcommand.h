// subcommand.h: what a subcommand of stopngo is, and all of them.
#pragma once

#include <memory>
#include <span>

namespace CLI {
class App;
}

namespace stopngo {

/// Made with its part of the command line, to which it adds its options; what the options say lands in it.
class Subcommand {
 public:
  Subcommand() = default;
  virtual ~Subcommand() = default;
  Subcommand(const Subcommand&) = delete;
  Subcommand& operator=(const Subcommand&) = delete;

  /// After parsing and before any work: makes whole what was given, and refuses what cannot work. Throws Failure.
  virtual void Complete() = 0;
  /// Throws Failure.
  virtual void Run() = 0;
};

std::unique_ptr<Subcommand> DeclareCheck(CLI::App& app);
std::unique_ptr<Subcommand> DeclareCompletion(CLI::App& app);
std::unique_ptr<Subcommand> DeclareManual(CLI::App& app);
std::unique_ptr<Subcommand> DeclareRun(CLI::App& app);
std::unique_ptr<Subcommand> DeclareSynth(CLI::App& app);
std::unique_ptr<Subcommand> DeclareRender(CLI::App& app);
std::unique_ptr<Subcommand> DeclareTrain(CLI::App& app);
std::unique_ptr<Subcommand> DeclareEval(CLI::App& app);
std::unique_ptr<Subcommand> DeclareFeatures(CLI::App& app);
std::unique_ptr<Subcommand> DeclareTune(CLI::App& app);
std::unique_ptr<Subcommand> DeclareWeights(CLI::App& app);

struct SubcommandEntry {
  const char* name;
  const char* help;
  std::unique_ptr<Subcommand> (*declare)(CLI::App& app);
};

/// All of them, in the order of --help.
std::span<const SubcommandEntry> Subcommands();

}  // namespace stopngo

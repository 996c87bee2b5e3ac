// main.cpp: the stopngo command: its subcommands, and how it ends.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <utility>
#include <vector>

#include "base/results.h"
#include "command/subcommands.h"
#include "host/failure.h"

namespace stopngo {
namespace {

constexpr int kDone = static_cast<int>(ExitCode::kDone);
constexpr int kFailed = static_cast<int>(ExitCode::kFailed);
constexpr int kUsage = static_cast<int>(ExitCode::kUsage);

using Command = std::pair<const CLI::App*, std::function<void()>>;

std::vector<Command> AddCommands(CLI::App& app) {
  std::vector<Command> commands;
  for (auto* const add : {AddRun, AddSynth, AddRender, AddTrain, AddEval, AddTune, AddWeights}) {
    std::function<void()> action = add(app);
    const CLI::App* const added = app.get_subcommands([](const CLI::App*) { return true; }).back();
    commands.emplace_back(added, std::move(action));
  }
  return commands;
}

// Help and version come as exceptions, too; everything else that parsing throws is wrong usage.
int EndParsing(const CLI::App& app, const CLI::ParseError& end) {
  if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(end);
  std::cerr << "stopngo: " << end.what() << '\n';
  return kUsage;
}

int Execute(int argc, char** argv) {
  CLI::App app("Stop-and-go detector: runs it, shows why it decides, and makes scenes to try it on.",
               "stopngo");
  app.set_version_flag("--version", "stopngo " STOPNGO_VERSION);
  app.require_subcommand(1);
  app.footer("stopngo COMMAND --help tells the options of a command, with examples.");
  const std::vector<Command> commands = AddCommands(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    return EndParsing(app, end);
  }
  for (const auto& [command, action] : commands) {
    if (command->parsed()) action();
  }
  return kDone;
}

// What was printed may still be on its way: an output that cannot take it is a failure as well.
void FinishOutput() {
  errno = 0;
  std::cout.flush();
  if (!std::cout || std::fflush(stdout) != 0) FailOutput();
}

int Main(int argc, char** argv) {
  // A pipe that is no longer read shows as a failed write, which leaves time to remove unfinished files.
  std::signal(SIGPIPE, SIG_IGN);
  const auto tell = [](const char* sentence, ExitCode code) {
    std::cerr << "stopngo: " << sentence << '\n';
    return static_cast<int>(code);
  };
  try {
    const int code = Execute(argc, argv);
    FinishOutput();
    return code;
  } catch (const NobodyReads&) {
    return kFailed;
  } catch (const Failure& failure) {
    return tell(failure.what(), failure.Code());
  } catch (const std::exception& fault) {
    return tell(fault.what(), ExitCode::kFailed);
  }
}

}  // namespace
}  // namespace stopngo

int main(int argc, char** argv) { return stopngo::Main(argc, argv); }

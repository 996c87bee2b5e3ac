// main.cpp: the stopngo command: its subcommands, and how it ends.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <string>

#include "base/interruption.h"
#include "base/results.h"
#include "command/options/misuse.h"
#include "command/subcommand.h"
#include "command/version.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/draw/kept_fonts.h"

namespace stopngo {
namespace {

constexpr int kDone = static_cast<int>(ExitCode::kDone);
constexpr int kFailed = static_cast<int>(ExitCode::kFailed);

int Execute(int argc, char** argv) {
  CLI::App app("Stop-and-go detector: runs it, shows why it decides, and makes scenes to try it on.",
               "stopngo");
  app.set_version_flag(
      "--version", VersionText,
      "Print version and commit, FFmpeg, and which module is loaded, with its kernels, and exit");
  app.require_subcommand(1);
  app.allow_extras();  // to say better what is wrong with them
  app.footer("stopngo COMMAND --help tells the options of a command, with examples.");
  std::map<const CLI::App*, std::unique_ptr<Subcommand>> subcommands;
  for (const SubcommandEntry& entry : Subcommands()) {
    CLI::App& part = *app.add_subcommand(entry.name, entry.help)->allow_extras();
    subcommands[&part] = entry.declare(part);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    // Help and version come as exceptions, too; everything else that parsing throws is wrong usage.
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(end);
    throw Failure(MisuseOf(app, end.what()), ExitCode::kUsage);
  }
  if (const std::string misuse = MisuseOf(app, {}); !misuse.empty()) throw Failure(misuse, ExitCode::kUsage);
  Subcommand& chosen = *subcommands.at(app.get_subcommands().front());
  chosen.Complete();
  chosen.Run();
  return kDone;
}

// What was printed may still be on its way: an output that cannot take it is a failure as well.
void FinishOutput() {
  errno = 0;
  std::cout.flush();
  if (!std::cout || std::fflush(stdout) != 0) FailOutput();
}

constexpr const char* kNoMemory = "stopngo: not enough memory\n";

// Libraries allocate where nothing may be thrown, in a destructor: without memory the language ends the program there.
[[noreturn]] void EndWhereNothingMayBeThrown() {
  RemoveUnfinished();
  try {
    if (const std::exception_ptr fault = std::current_exception()) std::rethrow_exception(fault);
  } catch (const std::bad_alloc&) {
    std::fputs(kNoMemory, stderr);
    std::_Exit(kFailed);
  } catch (...) {
    std::abort();
  }
  std::abort();
}

int Main(int argc, char** argv) {
  OccupyClosedStreams();
  ForgetFontsAtEnd();
  CatchSignals();
  std::set_terminate(EndWhereNothingMayBeThrown);
  const auto tell = [](const char* sentence, ExitCode code) {
    const std::string line = "stopngo: " + Escaped(sentence) + '\n';  // whole, before any of it is said
    std::cerr << line;
    return static_cast<int>(code);
  };
  try {
    const int code = Execute(argc, argv);
    FinishOutput();
    return code;
  } catch (const NobodyReads&) {
    EndBySignal(SIGPIPE);
  } catch (const Failure& failure) {
    return tell(failure.what(), failure.Code());
  } catch (const std::bad_alloc&) {
    // Not even a sentence is put together here.
    std::fputs(kNoMemory, stderr);
    return kFailed;
  } catch (const std::exception& fault) {
    return tell(fault.what(), ExitCode::kFailed);
  }
}

}  // namespace
}  // namespace stopngo

int main(int argc, char** argv) { return stopngo::Main(argc, argv); }

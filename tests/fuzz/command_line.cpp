// command_line.cpp: fuzz target: any arguments of any subcommand, as far as the work would begin: parsed, made whole,
// and every file that they name entered. Nothing is written and nothing is run.
//
// Input: a byte for the subcommand, then its arguments, a line each. They are parsed in a folder that holds a file of
// each kind.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "command/subcommand.h"
#include "host/common/failure.h"
#include "reading.h"

namespace {

void EnterFolder() {
  (void)fuzz::Folder().File("w", std::string(10372, '\1'));
  (void)fuzz::Folder().File("v", "YUV4MPEG2 W8 H8\nFRAME\n");
  (void)fuzz::Folder().File("t", "rate = 6\n");
  (void)fuzz::Folder().File("m",
                            "clip\tregion\trate\tlabels\nv\t-\t-\t0 1 still\nsynth:mixed:1-2\t-\t-\t-\n");
  std::filesystem::current_path(fuzz::Folder() / ".");
  // The default weights, whatever is built beside this program.
  setenv("STOPNGO_WEIGHTS", "w", 1);
  // And no module: one that was built with the targets would be unloaded, with the counters that the fuzzer reads.
  setenv("STOPNGO_MODULE", "none", 1);
}

/// As a process would get them: none holds a zero. The first few: the parser looks for each among all options.
std::vector<std::string> Arguments(std::string_view lines) {
  constexpr std::size_t kMost = 12;
  std::vector<std::string> arguments;
  while (!lines.empty() && arguments.size() < kMost) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    arguments.emplace_back(line.substr(0, line.find('\0')));
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
  }
  return arguments;
}

/// Whether an argument leads out of the folder, to devices that wait and to what else is on the machine.
bool LeadsOut(std::string_view argument) {
  return argument.find('/') != std::string_view::npos || argument.find("..") != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool entered = (EnterFolder(), true);
  (void)entered;
  fuzz::Input input(data, size);
  const auto subcommands = stopngo::Subcommands();
  const auto declare = subcommands[input.Below(subcommands.size())].declare;
  std::vector<std::string> arguments = Arguments(input.Rest());
  if (std::ranges::any_of(arguments, LeadsOut)) return 0;
  // The parser takes them from the end.
  std::ranges::reverse(arguments);
  CLI::App app;
  const std::unique_ptr<stopngo::Subcommand> subcommand = declare(app);
  try {
    app.parse(std::move(arguments));
    subcommand->Complete();
  } catch (const CLI::ParseError& end) {
    fuzz::Expect(end.what()[0] != '\0', "a refusal without a word");
  } catch (const stopngo::Failure& failure) {
    fuzz::Expect(failure.what()[0] != '\0', "a refusal without a word");
  }
  return 0;
}

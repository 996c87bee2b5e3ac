// manual.cpp: stopngo manual: the man pages, for the build. Not shown: what it takes and gives is nobody else's.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>

#include "command/options/table_of.h"
#include "command/subcommand.h"
#include "command/version.h"
#include "host/common/file.h"
#include "reference/man_page.h"

namespace stopngo {
namespace {

constexpr FileKind kPageFile{"a page", std::uint64_t{1} << 20};

class ManualCommand : public Subcommand {
 public:
  explicit ManualCommand(CLI::App& app);
  void Complete() override {}
  void Run() override;

 private:
  const CLI::App& app_;
  std::string page_;
  std::string header_;
};

ManualCommand::ManualCommand(CLI::App& app) : app_(app) {
  app.group("");
  app.add_option("PAGE", page_, "page as a person wrote it, docs/man/NAME.SECTION.scd")
      ->required()
      ->type_name("FILE");
  app.add_option("--header", header_, "the module's public header")->required()->type_name("FILE");
}

void ManualCommand::Run() {
  namespace fs = std::filesystem;
  const fs::path page(page_);
  const auto read = [&](const std::string& name) {
    const fs::path header(header_);
    return ReadFile(name == header.filename() ? header : page.parent_path() / name, kPageFile);
  };
  std::cout << ManPage(page.filename(), ReadFile(page, kPageFile),
                       {kVersion, TableOf(*app_.get_parent()), read});
}

}  // namespace

std::unique_ptr<Subcommand> DeclareManual(CLI::App& app) { return std::make_unique<ManualCommand>(app); }

}  // namespace stopngo

// check.cpp: stopngo check: everything that speaks against a set-up, and the set-up as a device takes it.
#include "host/check.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "base/file_register.h"
#include "base/results.h"
#include "base/warning.h"
#include "command/control_call.h"
#include "command/options/settings_options.h"
#include "command/options/source_options.h"
#include "command/subcommand.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/settings/setting_table.h"
#include "host/settings/settings_file.h"
#include "video/damage.h"
#include "video/open_source.h"

namespace stopngo {
namespace {

constexpr const char* kCheckFooter =
    R"(Without an input its frames are taken to be what the settings announce. Exit code 0 when nothing speaks against
the set-up, or warnings only; 1 for warnings with --strict; 2 for errors.

Examples:
  stopngo check drive.mp4 --config car.toml
  stopngo check --roi-x 400 --print
  stopngo check --config car.toml --emit c > device.c)";

using Json = nlohmann::ordered_json;

const char* NameOf(Severity severity) { return severity == Severity::kError ? "error" : "warning"; }

/// What is emitted on standard output has to stay what it is: findings go to standard error beside it.
void Tell(const std::string& line, bool beside) { beside ? Warn(line) : WriteResult(line); }

class CheckCommand : public Subcommand {
 public:
  explicit CheckCommand(CLI::App& app);
  void Complete() override;
  void Run() override;

 private:
  void TellFinding(const Finding& finding) const;
  void TellSettings() const;
  void Emit(const Setup& setup) const;

  Settings settings_;
  SettingsOptions options_;
  SourceOptions source_;
  std::string emit_;
  bool print_ = false;
  bool strict_ = false;
  bool json_ = false;
};

CheckCommand::CheckCommand(CLI::App& app) : options_(app, settings_) {
  app.footer(kCheckFooter);
  AddInput(app, source_.input);
  AddSourceOptions(app, source_);
  app.get_option("INPUT")->required(false);
  app.add_flag("--strict", strict_, "end with exit code 1 when there are warnings");
  auto* const print = app.add_flag("--print", print_, "the settings in force, and where each came from");
  auto* const json =
      app.add_flag("--json", json_, "JSON Lines: an object a finding, then a setting, the summary last");
  app.add_option("--emit", emit_, "c: the control call that sets a device so; toml: the file")
      ->type_name("FORM")
      ->check(CLI::IsMember({"c", "toml"}))
      ->excludes(print, json);
}

// It writes standard output alone, which may be led to a file that it reads.
void CheckCommand::Complete() {
  options_.Complete();
  FileRegister files;
  options_.EnterFiles(files);
  EnterInput(files, source_.input);
}

void CheckCommand::Run() {
  Setup setup = options_.InForce();
  if (!source_.input.empty()) {
    DamageRule damage(DamageRule::Kind::kAllowed, true);
    setup = options_.InForce(OpenSource(ForSettings(source_, settings_, damage))->Info());
  }
  const std::vector<Finding> findings = CheckSetup(Module(), setup);
  for (const Finding& finding : findings) TellFinding(finding);
  if (print_) TellSettings();
  const auto errors = std::ranges::count(findings, Severity::kError, &Finding::severity);
  const auto warnings = static_cast<std::ptrdiff_t>(findings.size()) - errors;
  if (errors == 0 && !emit_.empty()) Emit(setup);
  if (json_) WriteResult(JsonLine(Json{{"type", "summary"}, {"errors", errors}, {"warnings", warnings}}));
  const std::string counts =
      Print("%td error%s, %td warning%s", errors, errors == 1 ? "" : "s", warnings, warnings == 1 ? "" : "s");
  if (errors > 0) throw Failure(counts + ": this cannot work", ExitCode::kUsage);
  if (strict_ && warnings > 0) throw Failure(counts + ", and --strict");
}

void CheckCommand::TellFinding(const Finding& finding) const {
  if (json_) {
    WriteResult(JsonLine(Json{{"type", "finding"},
                              {"code", finding.code},
                              {"severity", NameOf(finding.severity)},
                              {"setting", finding.setting},
                              {"sentence", finding.sentence},
                              {"remedy", finding.remedy}}));
    return;
  }
  Tell(std::string(NameOf(finding.severity)) + ": " + SentenceOf(finding), !emit_.empty());
}

void CheckCommand::TellSettings() const {
  for (const Setting& setting : SettingTable()) {
    if (*setting.name == '\0') continue;
    const std::string value = TextOf(settings_, setting);
    const char* const origin = options_.OriginOf(setting.name);
    if (json_) {
      WriteResult(
          JsonLine(Json{{"type", "setting"}, {"name", setting.name}, {"value", value}, {"from", origin}}));
    } else {
      WriteResult(Print("%-17s %-24s %s", setting.name, value.c_str(), origin));
    }
  }
}

void CheckCommand::Emit(const Setup& setup) const {
  const auto lines = emit_ == "c" ? ControlCall(settings_, FramesOf(setup)) : SettingsLines(settings_);
  for (const std::string& line : lines) WriteResult(line);
}

}  // namespace

std::unique_ptr<Subcommand> DeclareCheck(CLI::App& app) { return std::make_unique<CheckCommand>(app); }

}  // namespace stopngo

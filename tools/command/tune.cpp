// tune.cpp: stopngo tune: searches the settings of the decision for a wanted rate of false alarms.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_register.h"
#include "base/results.h"
#include "command/options/evaluation_options.h"
#include "command/subcommand.h"
#include "evaluate/evaluation.h"
#include "evaluate/figures.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/settings/gate_kinds.h"
#include "host/settings/setting_table.h"
#include "host/settings/settings_file.h"

namespace stopngo {
namespace {

constexpr const char* kTuneFooter =
    R"(Tries every combination of the values below on the clips, and prints the one with the highest recall, then
the shortest median time to alarm, that keeps within the wanted rate of false alarms: TOML for --config.

Examples:
  stopngo tune validate.tsv --weights weights.bin --false-alarms-per-hour 0.5 > car.toml
  stopngo tune validate.tsv --weights weights.bin --try-threshold 0.5,0.6 --try-filter none)";

constexpr std::size_t kRunnersUp = 9;

/// A setting that is searched, and the values that it is given; see setting_table.h for their form.
struct Dimension {
  const char* setting;
  std::vector<std::string> values;
  int gates = 0;  ///< searched only with one of these; 0: always
};

struct TuneArguments {
  explicit TuneArguments(CLI::App& app) : options(app) {}

  EvaluationOptions options;
  std::vector<Dimension> dimensions{
      {"filter", {"none", "median", "gaussian"}},
      {"threshold", {"0.2", "0.3", "0.4", "0.5", "0.6", "0.7", "0.8", "0.9"}},
      {"time-leaving", {"1", "2", "3", "4", "5"}},
      {"gap-op", {"1", "2", "3"}},
      {"history-threshold", {"0.25", "0.5", "0.75"}, BitOf(GateKind::kHistory)},
      {"light-rate", {"25"}, BitOf(GateKind::kLight)},
  };
};

struct Candidate {
  Settings settings;
  Tally tally;
};

const Setting& SettingNamed(std::string_view name) {
  const std::span<const Setting> table = SettingTable();
  return *std::find_if(table.begin(), table.end(), [name](const Setting& row) { return name == row.name; });
}

/// Every combination of the values of the dimensions with the settings given.
std::vector<Settings> Combinations(const Settings& settings, std::span<const Dimension> dimensions) {
  std::vector<Settings> combinations{settings};
  for (const Dimension& dimension : dimensions) {
    std::vector<Settings> more;
    for (const Settings& base : combinations) {
      for (const std::string& value : dimension.values) {
        more.push_back(base);
        SetFromText(more.back(), SettingNamed(dimension.setting), value);
      }
    }
    combinations = std::move(more);
  }
  return combinations;
}

std::string InOneLine(const TuneArguments& arguments, const Settings& settings) {
  std::string line;
  for (const Dimension& dimension : arguments.dimensions) {
    Enlist(line, dimension.setting);
    line += " = " + TomlValue(TextOf(settings, SettingNamed(dimension.setting)));
  }
  return line;
}

/// Nothing tells one setting from another where there is nothing to catch.
void RefuseWithoutDepartures(const std::vector<Clip>& clips) {
  const auto departs = [](const LabelSpan& label) { return label.activity == Activity::kLeadDeparts; };
  if (std::ranges::any_of(clips,
                          [&](const Clip& clip) { return std::ranges::any_of(LabelsOf(clip), departs); }))
    return;
  throw Failure("the clips show no departure, which settings are chosen to catch");
}

class Search {
 public:
  explicit Search(TuneArguments& arguments) : arguments_(arguments), options_(arguments.options) {
    FileRegister files;  // standard output may be led to one that is read
    clips_ = options_.Clips(files);
  }

  void Run() {
    std::erase_if(arguments_.dimensions, [this](const Dimension& dimension) {
      return dimension.gates != 0 && (dimension.gates & options_.settings.gates) == 0;
    });
    RefuseWithoutDepartures(clips_);
    // The first dimension changes what is analysed, not only what is decided: a pass over the clips each.
    const std::span<const Dimension> dimensions(arguments_.dimensions);
    const std::vector<Settings> passes = Combinations(options_.settings, dimensions.first(1));
    for (std::size_t pass = 0; pass < passes.size(); ++pass) {
      const std::vector<Settings> settings = Combinations(passes[pass], dimensions.subspan(1));
      const std::string title = Print("tune %zu/%zu", pass + 1, passes.size());
      const std::vector<ClipRun> runs = RunClips(
          clips_,
          {.title = title, .settings = settings, .jobs = options_.jobs, .features = options_.Features()});
      for (std::size_t i = 0; i < settings.size(); ++i) {
        candidates_.push_back({settings[i], TallyAll(runs, i)});
      }
    }
    std::stable_sort(candidates_.begin(), candidates_.end(), [this](const Candidate& a, const Candidate& b) {
      return Better(a.tally, b.tally, options_.false_per_hour);
    });
    candidates_.resize(std::min(candidates_.size(), 1 + kRunnersUp));
    options_.json ? TellJson() : Tell();
  }

 private:
  void Tell() const {
    const Candidate& best = candidates_.front();
    const bool reached = WithinLimit(best.tally, options_.false_per_hour);
    WriteResult(
        Print(reached ? "# best within %g false alarms an hour of standing, on %d clips"
                      : "# nothing keeps within %g false alarms an hour of standing; nearest, on %d clips",
              options_.false_per_hour, best.tally.clips));
    WriteResult("# " + FigureSentence(best.tally));
    for (const Dimension& dimension : arguments_.dimensions) TellSetting(best, dimension.setting);
    TellSetting(best, "rate");
    if (best.settings.gates != 0) TellSetting(best, "gates");
    if (candidates_.size() > 1) WriteResult("# runners-up");
    for (const Candidate& candidate : std::span(candidates_).subspan(1)) {
      WriteResult("# " + InOneLine(arguments_, candidate.settings));
      WriteResult("#   " + FigureSentence(candidate.tally));
    }
  }

  static void TellSetting(const Candidate& candidate, const std::string& name) {
    WriteResult(name + " = " + TomlValue(TextOf(candidate.settings, SettingNamed(name))));
  }

  void TellJson() const {
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
      nlohmann::ordered_json json{{"type", "setting"}, {"place", i + 1}};
      for (const Dimension& dimension : arguments_.dimensions) {
        json[dimension.setting] = TextOf(candidates_[i].settings, SettingNamed(dimension.setting));
      }
      json["within_limit"] = WithinLimit(candidates_[i].tally, options_.false_per_hour);
      json.update(FigureJson(candidates_[i].tally));
      WriteResult(JsonLine(json));
    }
  }

  TuneArguments& arguments_;
  EvaluationOptions& options_;
  std::vector<Clip> clips_;
  std::vector<Candidate> candidates_;  ///< once searched: the best first
};

std::string FaultOf(const Dimension& dimension, const std::string& value) {
  Settings unused;
  try {
    SetFromText(unused, SettingNamed(dimension.setting), value);
  } catch (const std::invalid_argument& reason) {
    return reason.what();
  }
  return {};
}

class TuneCommand : public Subcommand {
 public:
  explicit TuneCommand(CLI::App& app);
  void Complete() override { search_.emplace(arguments_); }
  void Run() override { search_->Run(); }

 private:
  TuneArguments arguments_;
  std::optional<Search> search_;
};

TuneCommand::TuneCommand(CLI::App& app) : arguments_(app) {
  app.footer(kTuneFooter);
  for (Dimension& dimension : arguments_.dimensions) {
    app.add_option("--try-" + std::string(dimension.setting), dimension.values,
                   "values to try of --" + std::string(dimension.setting))
        ->delimiter(',')
        ->allow_extra_args(false)  // what follows is a manifest
        ->type_name("VALUE,…")
        ->capture_default_str()
        ->check([&dimension](const std::string& value) { return FaultOf(dimension, value); });
  }
}

}  // namespace

std::unique_ptr<Subcommand> DeclareTune(CLI::App& app) { return std::make_unique<TuneCommand>(app); }

}  // namespace stopngo

// eval.cpp: stopngo eval: how good a detector is on labelled clips, beside what a simple one could do.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "base/file_register.h"
#include "base/output_file.h"
#include "base/results.h"
#include "command/options/evaluation_options.h"
#include "command/subcommand.h"
#include "evaluate/curve.h"
#include "evaluate/evaluation.h"
#include "evaluate/figures.h"
#include "host/common/failure.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

constexpr const char* kEvalFooter =
    R"(An alarm is right when it is the first after a departure's start and comes within 3 s of it. Further
alarms of a departure that was caught, until 3 s after its end, are repeats; any other alarm is false;
alarms where a clip has no label are not judged. With gates there is a row without them, too; what they hear of
the own speed comes from the labels. Rates come with the bound that they do not exceed with
95 % confidence. A recording without a region is looked at where the settings put theirs.

Examples:
  stopngo eval test.tsv --weights weights.bin
  stopngo eval test.tsv recordings.tsv --config car.toml --curve curve.tsv
  stopngo eval test.tsv --weights weights.bin --baseline difference,flow)";

/// Of the curve. The module compares scores near 0 and 1 as finely as any.
constexpr std::array kThresholds{0.01, 0.02, 0.05, 0.1, 0.15, 0.2, 0.25, 0.3, 0.35, 0.4,  0.45, 0.5,
                                 0.55, 0.6,  0.65, 0.7, 0.75, 0.8, 0.85, 0.9, 0.95, 0.98, 0.99, 0.999};

using Json = nlohmann::ordered_json;

struct EvalArguments {
  explicit EvalArguments(CLI::App& app) : options(app) {}

  EvaluationOptions options;
  std::vector<std::string> baselines;
  std::string curve;
};

/// A baseline at its best.
struct BaselineLine {
  const Baseline* baseline;
  BaselineResult result;
};

class Evaluation {
 public:
  explicit Evaluation(EvalArguments& arguments) : arguments_(arguments), options_(arguments.options) {
    const std::string& table = arguments.curve;
    const std::string picture =
        table.empty() ? table : std::filesystem::path(table).replace_extension(".png").string();
    FileRegister files;
    files.Writes(table, "--curve");
    files.Writes(picture, "its plot; name the table, FILE.tsv");
    clips_ = options_.Clips(files);
    if (table.empty()) return;
    // Opened before the work, so that one that cannot be written is told at once.
    curve_table_.emplace(table);
    curve_plot_.emplace(picture);
  }

  void Run() {
    std::vector<Settings> settings{options_.settings};
    if (curve_table_) {
      for (const double threshold : kThresholds) {
        settings.push_back(options_.settings);
        settings.back().threshold = threshold;
      }
    }
    if (options_.settings.gates != 0) {
      without_gates_ = settings.size();
      settings.push_back(options_.settings);
      settings.back().gates = 0;
    }
    runs_ = RunClips(clips_, {.title = "eval",
                              .settings = settings,
                              .signals = !arguments_.baselines.empty(),
                              .jobs = options_.jobs,
                              .features = options_.Features()});
    RunBaselines();
    if (curve_table_) WriteCurveFiles(settings);
    options_.json ? TellJson() : Tell();
  }

 private:
  void RunBaselines() {
    std::vector<SignalClip> signals;
    signals.reserve(runs_.size());
    for (const ClipRun& run : runs_) {
      signals.push_back({run.signals, run.labels, options_.settings.time_cooling.Frames(run.fps)});
    }
    for (const Baseline& baseline : Baselines()) {
      const auto& wanted = arguments_.baselines;
      if (std::find(wanted.begin(), wanted.end(), baseline.name) == wanted.end()) continue;
      lines_.push_back({&baseline, BestBaseline(baseline, signals, options_.settings.gap_op,
                                                options_.false_per_hour, options_.jobs)});
    }
  }

  /// The baselines as further rows.
  [[nodiscard]] std::vector<NamedTally> BaselineRows() const {
    std::vector<NamedTally> rows;
    for (const BaselineLine& line : lines_) rows.push_back({line.baseline->name, line.result.tally});
    return rows;
  }

  void WriteCurveFiles(const std::vector<Settings>& settings) {
    std::vector<CurvePoint> points;
    for (std::size_t i = 1; i < without_gates_.value_or(settings.size()); ++i) {
      points.push_back({settings[i].threshold, TallyAll(runs_, i)});
    }
    std::vector<NamedTally> marks{{"as set", TallyAll(runs_, 0)}};
    for (NamedTally& row : BaselineRows()) marks.push_back(std::move(row));
    WriteCurve(curve_table_->Stream(), points);
    DrawCurve(points, marks).WritePng(curve_plot_->Stream());
    CommitTogether({&*curve_table_, &*curve_plot_});
  }

  /// Calls take(clip, event) for every event of the settings' own run, in the order of the clips.
  template <typename Take>
  void ForEachEvent(Take take) const {
    for (std::size_t i = 0; i < clips_.size(); ++i) {
      for (const Event& event : runs_[i].events.front()) take(clips_[i], event);
    }
  }

  void Tell() const {
    std::vector<NamedTally> rows = TallyKinds(clips_, runs_, 0);
    rows.push_back({"all", TallyAll(runs_, 0)});
    if (without_gates_) rows.push_back({"without gates", TallyAll(runs_, *without_gates_)});
    for (NamedTally& row : BaselineRows()) rows.push_back(std::move(row));
    for (const std::string& line : FigureTable(rows)) WriteResult(line);
    for (const BaselineLine& line : lines_) WriteResult(Describe(line));
    ForEachEvent([](const Clip& clip, const Event& event) {
      const bool missed = event.verdict == Verdict::kMissed;
      if (!missed && event.verdict != Verdict::kFalse) return;
      WriteResult(Print("%-6s  %8.3f s  ", NameOf(event.verdict), event.time_s) + clip.name +
                  (missed ? "" : "  (" + std::string(NameOf(*event.during)) + ")"));
    });
  }

  [[nodiscard]] std::string Describe(const BaselineLine& line) const {
    const BaselineSetting& best = line.result.setting;
    const std::string text =
        Print("%s: %s, times %+g, above %.4g, counter above %d, best recall within %g false alarms an hour",
              line.baseline->name, line.baseline->help, best.sign, best.threshold, best.time_leaving,
              options_.false_per_hour);
    return WithinLimit(line.result.tally, options_.false_per_hour) ? text : text + " (not reached)";
  }

  void TellJson() const {
    ForEachEvent([](const Clip& clip, const Event& event) {
      Json json{{"type", "event"},
                {"verdict", NameOf(event.verdict)},
                {"clip", clip.name},
                {"kind", clip.kind},
                {"time", event.time_s}};
      if (event.during) json["during"] = NameOf(*event.during);
      if (event.verdict == Verdict::kRight) json["delay_s"] = event.delay_s;
      WriteResult(JsonLine(json));
    });
    for (const NamedTally& kind : TallyKinds(clips_, runs_, 0)) {
      TellFigures({{"type", "kind"}, {"kind", kind.name}}, kind.tally);
    }
    for (const BaselineLine& line : lines_) {
      const BaselineSetting& best = line.result.setting;
      TellFigures({{"type", "baseline"},
                   {"baseline", line.baseline->name},
                   {"sign", best.sign},
                   {"threshold", best.threshold},
                   {"time_leaving", best.time_leaving},
                   {"within_limit", WithinLimit(line.result.tally, options_.false_per_hour)}},
                  line.result.tally);
    }
    if (without_gates_) TellFigures({{"type", "alone"}}, TallyAll(runs_, *without_gates_));
    TellFigures({{"type", "summary"}}, TallyAll(runs_, 0));
  }

  static void TellFigures(Json json, const Tally& tally) {
    json.update(FigureJson(tally));
    WriteResult(JsonLine(json));
  }

  const EvalArguments& arguments_;
  EvaluationOptions& options_;
  std::vector<Clip> clips_;
  std::optional<OutputFile> curve_table_;
  std::optional<OutputFile> curve_plot_;
  std::vector<ClipRun> runs_;
  std::vector<BaselineLine> lines_;
  std::optional<std::size_t> without_gates_;  ///< number of the settings that are the same but for the gates
};

class EvalCommand : public Subcommand {
 public:
  explicit EvalCommand(CLI::App& app);
  void Complete() override { evaluation_.emplace(arguments_); }
  void Run() override { evaluation_->Run(); }

 private:
  EvalArguments arguments_;
  std::optional<Evaluation> evaluation_;
};

EvalCommand::EvalCommand(CLI::App& app) : arguments_(app) {
  app.footer(kEvalFooter);
  std::vector<std::string> names;
  for (const Baseline& baseline : Baselines()) names.emplace_back(baseline.name);
  app.add_option("--baseline", arguments_.baselines,
                 "also the best that a threshold on a simple figure could do: difference or flow")
      ->type_name("NAME,…")
      ->delimiter(',')
      ->allow_extra_args(false)  // what follows is a manifest
      ->check(CLI::IsMember(names));
  app.add_option("--curve", arguments_.curve,
                 "tab-separated figures for thresholds from 0 to 1; and a plot of them, FILE.png")
      ->type_name("FILE.tsv");
}

}  // namespace

std::unique_ptr<Subcommand> DeclareEval(CLI::App& app) { return std::make_unique<EvalCommand>(app); }

}  // namespace stopngo

// features.cpp: stopngo features: keeps what the module's histograms are in clips, and tells what they look like.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "base/file_register.h"
#include "base/output_folder.h"
#include "base/progress.h"
#include "base/results.h"
#include "clips/manifest.h"
#include "command/options/evaluation_options.h"
#include "command/options/number_checks.h"
#include "command/subcommand.h"
#include "evaluate/evaluation.h"
#include "evaluate/motion_table.h"
#include "features/feature_plan.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "train/feature_maker.h"

namespace stopngo {
namespace {

constexpr const char* kFeaturesFooter =
    R"(With --output all that decisions and trainings take from the clips' pictures is kept, so that eval, tune, train and
--table take seconds with --features-from DIR, and give the same bytes. Work that was broken off goes on where it was;
several machines may each make a --part of one folder.

With --table, of each pair of frames: the sum of the histogram, the net share of it sideways, the share upwards (where
the sum is above 50), and how many cells have a sum of 6 or more. By label and kind of clip at 10, 25, 50, 75 and
90 %; then around the starts of departures, the least, the quartiles and the greatest of the departures' medians.
Recordings and scenes side by side show what scenes lack. No weights are needed.

Examples:
  stopngo features drives.tsv --table
  stopngo features train.tsv --output kept --looks 3 --only-looks
  stopngo features test.tsv --output kept --part=2/8
  stopngo eval test.tsv --features-from kept)";

/// Which of how many parts of the work.
struct Part {
  int number = 1;
  int count = 1;
};

std::optional<Part> PartOfText(const std::string& text) {
  constexpr int kMost = 10000;
  const std::size_t slash = text.find('/');
  if (slash == std::string::npos) return std::nullopt;
  const auto number = NumberOf<int>(text.substr(0, slash));
  const auto count = NumberOf<int>(text.substr(slash + 1));
  if (!number || !count || *number < 1 || *number > *count || *count > kMost) return std::nullopt;
  return Part{*number, *count};
}

class FeaturesCommand : public Subcommand {
 public:
  explicit FeaturesCommand(CLI::App& app);
  void Complete() override;
  void Run() override { table_ ? RunTable() : RunMaking(); }

 private:
  void Plan(FileRegister& files);
  void RunTable() const;
  void RunMaking() const;
  void Tell(const std::vector<MotionRow>& rows) const;

  EvaluationOptions options_;
  bool table_ = false;
  std::string output_, part_text_;
  FeatureChoice choice_{.evaluation = true, .looks = 0, .seed = 1};
  bool only_looks_ = false;
  std::vector<Clip> clips_;
  std::vector<PlannedFile> planned_;
};

FeaturesCommand::FeaturesCommand(CLI::App& app) : options_(app) {
  app.footer(kFeaturesFooter);
  app.add_flag("--table", table_, "tell the motion by label, and around departures");
  app.add_option("-o,--output", output_, "folder that keeps the features")->type_name("DIR");
  app.add_option("--looks", choice_.looks,
                 "keep so many tracks from each clip for train, as its --looks has them")
      ->check(Within(0, 64))
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--seed", choice_.seed, "of these, as train's --seed")
      ->check(Within(0, kLargestSeed))
      ->type_name("N")
      ->capture_default_str();
  app.add_flag("--only-looks", only_looks_,
               "leave out what eval and tune take, and train of its validation and test clips");
  app.add_option("--part", part_text_, "make one of several parts of about the same size")->type_name("K/N");
}

void FeaturesCommand::Complete() {
  const auto refuse = [](const char* sentence) { throw Failure(sentence, ExitCode::kUsage); };
  if (table_ != output_.empty()) refuse("--table or --output: one of them says what to do");
  if (output_ == "-") refuse("--output: features are kept in a folder");
  if (only_looks_ && choice_.looks == 0) refuse("--only-looks: without --looks there are none");
  choice_.evaluation = !only_looks_;
  FileRegister files;  // standard output may be led to one that is read
  clips_ = options_.Clips(files);
  if (table_) return;
  if (options_.Features() != nullptr) refuse("--features-from: what is kept is made from pictures");
  Plan(files);
}

void FeaturesCommand::Plan(FileRegister& files) {
  std::vector<ManifestShare> shares;
  shares.reserve(options_.manifests.size());
  for (const std::string& path : options_.manifests) shares.push_back({path, ReadManifest(path).size()});
  planned_ = PlanFeatures(output_, shares, clips_);
  if (!part_text_.empty()) {
    const std::optional<Part> part = PartOfText(part_text_);
    if (!part) throw Failure("--part: " + Quoted(part_text_) + " is no K/N, such as 3/8", ExitCode::kUsage);
    planned_ = PartOf(std::move(planned_), part->number, part->count);
  }
  for (const PlannedFile& file : planned_) files.Writes(file.path, "--output");
}

void FeaturesCommand::RunTable() const {
  const std::vector<Settings> settings{Watching(options_.settings)};
  const std::vector<ClipRun> runs = RunClips(clips_, {.title = "features",
                                                      .settings = settings,
                                                      .motion = true,
                                                      .jobs = options_.jobs,
                                                      .features = options_.Features()});
  Tell(MotionByLabel(clips_, runs));
  if (!options_.json) WriteResult("");
  Tell(MotionOfDepartures(runs));
}

void FeaturesCommand::RunMaking() const {
  MakeOutputFolder(output_);
  const Module module;
  std::optional<Progress> progress;
  const std::size_t made = MakeFeatures(
      module, options_.settings, choice_, planned_, options_.jobs,
      [&](std::size_t clips) { progress.emplace("features", static_cast<std::int64_t>(clips)); },
      [&] { progress->Step(); });
  progress.reset();
  const std::size_t kept = planned_.size() - made;
  if (options_.json) {
    WriteResult(
        JsonLine({{"type", "kept"}, {"folder", output_}, {"files_made", made}, {"files_kept", kept}}));
  } else {
    WriteResult(output_ + Print(": %zu files made, %zu were there", made, kept));
  }
}

void FeaturesCommand::Tell(const std::vector<MotionRow>& rows) const {
  if (!options_.json) {
    for (const std::string& line : MotionLines(rows)) WriteResult(line);
    return;
  }
  for (const MotionRow& row : rows) WriteResult(JsonLine(MotionJson(row)));
}

}  // namespace

std::unique_ptr<Subcommand> DeclareFeatures(CLI::App& app) { return std::make_unique<FeaturesCommand>(app); }

}  // namespace stopngo

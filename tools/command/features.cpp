// features.cpp: stopngo features: what the module's histograms look like in clips.
#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "base/file_register.h"
#include "base/results.h"
#include "command/evaluation_options.h"
#include "command/subcommand.h"
#include "evaluate/evaluation.h"
#include "evaluate/motion_table.h"

namespace stopngo {
namespace {

constexpr const char* kFeaturesFooter =
    R"(Of each pair of frames: the sum of the histogram, the net share of it sideways, the share upwards (where the sum
is above 50), and how many cells have a sum of 6 or more. By label and kind of clip at 10, 25, 50, 75 and 90 %;
then around the starts of departures, the least, the quartiles and the greatest of the departures' medians.
No weights are needed. Recordings and scenes side by side show what scenes lack.

Examples:
  stopngo features drives.tsv --table
  stopngo features weights/test.tsv drives.tsv --table --json)";

class FeaturesCommand : public Subcommand {
 public:
  explicit FeaturesCommand(CLI::App& app) : options_(app) {
    app.footer(kFeaturesFooter);
    app.add_flag("--table", table_, "tell the motion by label, and around departures")->required();
  }

  void Complete() override {
    FileRegister files;  // standard output may be led to one that is read
    clips_ = options_.Clips(files);
  }

  void Run() override {
    const std::vector<Settings> settings{Watching(options_.settings)};
    const std::vector<ClipRun> runs =
        RunClips(clips_, {.title = "features", .settings = settings, .motion = true, .jobs = options_.jobs});
    Tell(MotionByLabel(clips_, runs));
    if (!options_.json) WriteResult("");
    Tell(MotionOfDepartures(runs));
  }

 private:
  void Tell(const std::vector<MotionRow>& rows) const {
    if (!options_.json) {
      for (const std::string& line : MotionLines(rows)) WriteResult(line);
      return;
    }
    for (const MotionRow& row : rows) WriteResult(JsonLine(MotionJson(row)));
  }

  EvaluationOptions options_;
  bool table_ = false;
  std::vector<Clip> clips_;
};

}  // namespace

std::unique_ptr<Subcommand> DeclareFeatures(CLI::App& app) { return std::make_unique<FeaturesCommand>(app); }

}  // namespace stopngo

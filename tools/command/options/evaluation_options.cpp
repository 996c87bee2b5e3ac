// evaluation_options.cpp: the options of every subcommand that runs the module over manifests.
#include "command/options/evaluation_options.h"

#include <CLI/CLI.hpp>
#include <variant>

#include "base/parallel.h"
#include "clips/manifest.h"
#include "command/options/number_checks.h"
#include "command/options/setup_check.h"
#include "command/options/source_options.h"

namespace stopngo {

EvaluationOptions::EvaluationOptions(CLI::App& app) : jobs(HardwareJobs()), options_(app, settings) {
  app.add_option("MANIFEST", manifests, "tab-separated list of clips: files, synth:KIND:FIRST-LAST")
      ->required()
      ->type_name("FILE");
  AddJobs(app, jobs);
  app.add_option("--false-alarms-per-hour", false_per_hour,
                 "of standing: the limit within which the best is searched")
      ->type_name("NUMBER")
      ->check(ZeroOrMore())
      ->capture_default_str();
  AddAllowDamaged(app, allow_damaged);
  AddFeaturesFrom(app, features_from_);
  app.add_flag("--json", json, "JSON Lines");
}

std::vector<Clip> EvaluationOptions::Clips(FileRegister& files) {
  options_.Complete();
  HeedFindings(Module(), options_.InForce());
  options_.EnterFiles(files);
  std::vector<Clip> clips = ClipsOf(manifests, settings, allow_damaged, files);
  ReadFeatures(features_from_, settings, files, features_);
  return clips;
}

void AddJobs(CLI::App& app, int& jobs) {
  app.add_option("--jobs", jobs, "threads; the results do not depend on them")
      ->type_name("N")
      ->check(Within(1, 1024))
      ->default_str("one a processor");  // help is the same on every machine
}

void AddFeaturesFrom(CLI::App& app, std::string& folder) {
  app.add_option("--features-from", folder,
                 "take clips from what stopngo features has kept of them, not from pictures")
      ->type_name("DIR");
}

void ReadFeatures(const std::string& folder, const Settings& settings, FileRegister& files,
                  std::optional<FeatureFolder>& features) {
  if (folder.empty()) return;
  if (settings.log > 0) {
    throw Failure("--log: the module tells of pictures, and with --features-from there are none",
                  ExitCode::kUsage);
  }
  for (const std::string& path : FeatureFilesIn(folder)) files.Reads(path, "--features-from");
  features.emplace(folder);
}

std::vector<Clip> ClipsOf(std::span<const std::string> manifests, const Settings& settings,
                          bool allow_damaged, FileRegister& files) {
  for (const std::string& manifest : manifests) files.Reads(manifest, "the manifest");
  std::vector<Clip> clips = ReadManifests(manifests, settings, allow_damaged);
  for (const Clip& clip : clips) {
    if (!clip.IsScene()) EnterInput(files, std::get<std::string>(clip.source), "a clip's recording");
  }
  return clips;
}

}  // namespace stopngo

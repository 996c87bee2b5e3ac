// evaluation_options.cpp: the options of every subcommand that runs the module over manifests.
#include "command/evaluation_options.h"

#include <CLI/CLI.hpp>

#include "base/parallel.h"
#include "clips/manifest.h"
#include "command/source_options.h"

namespace stopngo {

EvaluationOptions::EvaluationOptions(CLI::App& app) : jobs(HardwareJobs()), options_(app, settings) {
  app.add_option("MANIFEST", manifests, "tab-separated list of clips: files, synth:KIND:FIRST-LAST")
      ->required();
  app.add_option("--jobs", jobs, "threads; the results do not depend on them")
      ->type_name("N")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  app.add_option("--false-alarms-per-hour", false_per_hour,
                 "of standing: the limit within which the best is searched")
      ->type_name("NUMBER")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  AddAllowDamaged(app, allow_damaged);
  app.add_flag("--json", json, "JSON Lines");
}

std::vector<Clip> EvaluationOptions::Clips() {
  options_.Complete();
  return ReadManifests(manifests, settings, allow_damaged);
}

std::vector<std::string> EvaluationOptions::Files() const {
  std::vector<std::string> files = options_.Files();
  files.insert(files.end(), manifests.begin(), manifests.end());
  return files;
}

}  // namespace stopngo

// feature_plan.cpp: which files a folder of features has, and who makes which.
#include "features/feature_plan.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

#include "features/feature_file.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

/// Reading a second of a recording, every frame of it, takes so many times as long as rendering one of a scene at
/// 6 frames a second.
constexpr double kRecordingCost = 2.5;
/// Of a file: half a minute of one core, with the passes of a training.
constexpr double kFileCost = 200;

double CostOf(const Clip& clip) {
  if (const auto* const drawn = std::get_if<DrawnScene>(&clip.source)) {
    return DrawScene(drawn->kind, drawn->seed).length_s;
  }
  return clip.labels.empty() ? 0 : kRecordingCost * clip.labels.back().end_s;
}

void PlanManifest(const std::string& folder, const std::string& manifest, std::span<const Clip> clips,
                  std::vector<PlannedFile>& files) {
  const std::string name = std::filesystem::path(manifest).filename().string();
  for (int number = 1; !clips.empty(); ++number) {
    PlannedFile file;
    std::size_t count = 0;
    while (count < clips.size() && file.cost < kFileCost) file.cost += CostOf(clips[count++]);
    file.path =
        (std::filesystem::path(folder) / (name + Print(".%05d", number))).string().append(kFeaturesEnding);
    file.clips = clips.first(count);
    clips = clips.subspan(count);
    files.push_back(std::move(file));
  }
}

}  // namespace

std::vector<PlannedFile> PlanFeatures(const std::string& folder, std::span<const ManifestShare> manifests,
                                      std::span<const Clip> clips) {
  std::vector<PlannedFile> files;
  std::set<std::filesystem::path> names;
  for (const ManifestShare& manifest : manifests) {
    if (!names.insert(std::filesystem::path(manifest.path).filename()).second) {
      throw Failure(manifest.path + ": another manifest has this name, by which the files of features go",
                    ExitCode::kUsage);
    }
    PlanManifest(folder, manifest.path, clips.first(manifest.clips), files);
    clips = clips.subspan(manifest.clips);
  }
  return files;
}

// The dearest first, each to the part that has least to do.
std::vector<PlannedFile> PartOf(std::vector<PlannedFile> files, int part, int parts) {
  std::stable_sort(files.begin(), files.end(),
                   [](const PlannedFile& a, const PlannedFile& b) { return a.cost > b.cost; });
  std::vector<double> costs(static_cast<std::size_t>(parts));
  std::vector<PlannedFile> mine;
  for (PlannedFile& file : files) {
    const auto least = std::min_element(costs.begin(), costs.end());
    *least += file.cost;
    if (least - costs.begin() == part - 1) mine.push_back(std::move(file));
  }
  std::sort(mine.begin(), mine.end(),
            [](const PlannedFile& a, const PlannedFile& b) { return a.path < b.path; });
  return mine;
}

}  // namespace stopngo

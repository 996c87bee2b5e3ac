// feature_plan.h: which files a folder of features has, and who makes which.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "clips/clip.h"

namespace stopngo {

/// How many of the clips, one after the other, a manifest names.
struct ManifestShare {
  std::string path;
  std::size_t clips;
};

struct PlannedFile {
  std::string path;
  std::span<const Clip> clips;
  double cost = 0;  ///< expected: a second of a scene has 1
};

/// The files of a folder: of a few clips each, so that work that was broken off has little to do again. They depend on
/// the manifests alone. Throws Failure for two manifests of one name.
std::vector<PlannedFile> PlanFeatures(const std::string& folder, std::span<const ManifestShare> manifests,
                                      std::span<const Clip> clips);

/// One part of several; all of them together have every file once, and about the same to do.
std::vector<PlannedFile> PartOf(std::vector<PlannedFile> files, int part, int parts);

}  // namespace stopngo

// clip_keys.cpp: texts that are the same for clips that give the same frames to the same region.
#include "features/clip_keys.h"

#include <variant>

#include "host/common/sha256.h"
#include "host/common/text.h"
#include "video/playlist.h"

namespace stopngo {

std::string ClipKeys::Of(const Clip& clip, double rate) {
  // A scene's name is its recipe.
  std::string key = clip.IsScene() ? clip.name : "sha256:" + Recording(std::get<std::string>(clip.source));
  if (clip.region) {
    key +=
        Print(" region=%d,%d,%d,%d", clip.region->x, clip.region->y, clip.region->width, clip.region->height);
  }
  if (clip.moved != RegionMove{}) key += Print(" moved=%+d,%+d", clip.moved.x, clip.moved.y);
  return key + " rate=" + NumberText(clip.rate.value_or(rate));
}

std::string ClipKeys::Recording(const std::string& path) {
  {
    const std::lock_guard lock(asking_);
    if (const auto known = recordings_.find(path); known != recordings_.end()) return known->second;
  }
  std::string sha256 = Sha256OfFile(path);
  std::string listed;
  for (const std::string& entry : PlaylistEntries(path)) listed += Sha256OfFile(entry);
  if (!listed.empty()) sha256 = Sha256(sha256 + listed);
  const std::lock_guard lock(asking_);
  return recordings_.emplace(path, sha256).first->second;
}

}  // namespace stopngo

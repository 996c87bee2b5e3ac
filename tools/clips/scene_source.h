// scene_source.h: frames straight from a scene, without a file between.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/label.h"
#include "scene/recipe/recipe.h"
#include "scene/space/window.h"
#include "video/frame_source.h"

namespace stopngo {

struct SceneFrames {
  std::unique_ptr<FrameSource> frames;
  std::vector<LabelSpan> labels;  ///< of the whole scene
};

/// Renders the frames that a recording of the scene would give at a rate, and no others. name: for the user;
/// rate: frames a second to give, the nearest ones, at most the scene's; 0: all.
SceneFrames OpenSceneFrames(const std::string& name, const SceneOptions& options, const SceneWindow& window,
                            double rate);

}  // namespace stopngo

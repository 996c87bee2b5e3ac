// scene_source.h: frames straight from a scene, without a file between.
#pragma once

#include <memory>
#include <string>

#include "scene/scene.h"
#include "video/frame_source.h"

namespace stopngo {

struct SceneFrames {
  std::string name;  ///< for the user
  std::unique_ptr<Scene> scene;
  int width;  ///< of what the scene renders
  int height;
  double fps;   ///< of the scene
  double rate;  ///< frames a second to give, the nearest ones; at most fps; 0: all
};

/// Renders the frames that a recording of the scene would give at the rate, and no others.
std::unique_ptr<FrameSource> OpenSceneFrames(SceneFrames frames);

}  // namespace stopngo

// window.h: the part of a scene's picture that is rendered.
#pragma once

namespace stopngo {

/// The part of a scene's picture that is rendered, in its own pixels.
struct SceneWindow {
  int x = 0, y = 0;
  int width = 0, height = 0;  ///< 0: the whole picture
};

}  // namespace stopngo

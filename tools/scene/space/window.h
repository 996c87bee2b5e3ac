// window.h: parts of a scene's picture.
#pragma once

namespace stopngo {

/// The part of a scene's picture that is rendered, in its own pixels.
struct SceneWindow {
  int x = 0, y = 0;
  int width = 0, height = 0;  ///< 0: the whole picture
};

/// A part of a picture: where it begins in the whole, and the sizes of both.
struct PicturePart {
  int x, y, width, height;
  int whole_width, whole_height;
};

}  // namespace stopngo

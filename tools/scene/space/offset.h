// offset.h: by how much a picture is displaced.
#pragma once

namespace stopngo {

/// Pixels, to the right and downwards.
struct Offset {
  double x;
  double y;
};

}  // namespace stopngo

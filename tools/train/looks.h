// looks.h: the ways in which a training looks at one clip.
#pragma once

#include <vector>

#include "base/random.h"
#include "clips/clip.h"
#include "host/settings/settings.h"
#include "video/frame_source.h"

namespace stopngo {

// Half a block and more: the edges of what moves then fall everywhere in the blocks, and a region that a
// user has set a little off is no surprise.
inline constexpr int kLookShift = 16;  // pixels

struct Look {
  bool mirrored = false;
  int dx = 0, dy = 0;
  int filter = 0;
  int scale = 0;
};

/// Looks at the same frames.
struct LooksAtRate {
  double rate;  ///< frames a second
  std::vector<Look> looks;
};

/// The first is the clip as it stands; fewer looks are the first of more. rate: of the clip.
std::vector<LooksAtRate> DrawLooks(const Settings& settings, double rate, int count, Random random);

/// The settings of a detector that looks so at a clip's frames, and decides nothing.
Settings ForLook(Settings settings, const OpenedClip& clip, const Look& look);

void Mirror(LumaFrame& frame);

}  // namespace stopngo

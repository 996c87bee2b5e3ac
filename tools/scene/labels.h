// labels.h: what a scene is judged by: its activities as spans that follow one another.
#pragma once

#include <vector>

#include "base/label.h"
#include "scene/motion/track.h"

namespace stopngo {

/// When things happen; spans may overlap.
struct SceneEvents {
  std::vector<Span> ego_moving;
  std::vector<Span> lead_moving;
  std::vector<Span> crossing;
  double length_s;
};

/// Of what happens at once our own motion counts before the lead's, that before crossing things; the
/// time after the departure's span in which the lead is still near and drives on belongs to no label.
std::vector<LabelSpan> MakeLabels(const SceneEvents& events);

}  // namespace stopngo

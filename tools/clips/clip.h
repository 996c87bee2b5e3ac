// clip.h: a labelled clip, recorded or rendered, and its frames as a detector is given them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/label.h"
#include "clips/region.h"
#include "host/common/failure.h"
#include "scene/script/script.h"
#include "video/frame_source.h"

namespace stopngo {

/// A scene that is drawn from a seed.
struct DrawnScene {
  SceneKind kind;
  std::uint64_t seed;
};

struct Clip {
  std::string name{};  ///< as the manifest has it; of a range, that of the one scene
  std::string kind{};  ///< the group that it counts in
  std::variant<std::string, DrawnScene> source{};  ///< a recording's path, or a scene
  std::optional<Region> region{};   ///< unset: where the scene suggests it, or the tools' default
  RegionMove moved{};               ///< from there, to see what an ill-placed region costs
  std::optional<double> rate{};     ///< frames a second handed over; unset: as settings tell
  std::vector<LabelSpan> labels{};  ///< of a recording; a scene knows its own
  std::size_t number = 0;           ///< its place among all clips that were read with it
  bool allow_damaged = false;       ///< a recording is taken as far as it goes

  [[nodiscard]] bool IsScene() const { return std::holds_alternative<DrawnScene>(source); }
};

struct OpenedClip {
  std::unique_ptr<FrameSource> frames;
  Region region;                  ///< in the pixels of the frames
  std::vector<LabelSpan> labels;  ///< in order of time
};

/// Opens a clip. rate: frames a second handed over where the clip itself asks for none, the nearest ones;
/// 0: all. A recording gives whole pictures. A scene is rendered only where a detector looks, in the
/// region and margin pixels around it, and only at the frames handed over: the module reads nothing
/// outside its region. The scene is that of the whole picture; noise and the blocks of compression are
/// drawn for the part. Any number of threads may open and read clips at once. Throws Failure.
OpenedClip OpenClip(const Clip& clip, double rate, int margin);

/// The labels of a clip, which need no frame.
std::vector<LabelSpan> LabelsOf(const Clip& clip);

/// For after the last frame, which came at last_s: throws Failure when labels go on for more than a second. A
/// recording that was cut short, or labels of another one, would count as time without a false alarm.
void CheckEnd(const OpenedClip& clip, double last_s);
void CheckEnd(const std::vector<LabelSpan>& labels, double fps, double last_s);

/// The failure with the clip's name, where it does not have it yet.
Failure NamingClip(const Clip& clip, const Failure& failure);

}  // namespace stopngo

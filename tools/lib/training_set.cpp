// training_set.cpp: clips turned into feature tracks, each looked at in several ways.
#include "training_set.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <mutex>
#include <string_view>

#include "parallel.h"
#include "scene_random.h"

namespace stopngo {
namespace {

constexpr std::uint64_t kStream = 0x4c;  // of random numbers: the looks'

// Half a block and more: the edges of what moves then fall everywhere in the blocks, and a region that a
// user has set a little off is no surprise.
constexpr int kShift = 16;  // pixels

/// Far above every score: no alarm, and so no hold in which nothing is analysed.
constexpr double kNoAlarm = 2;

struct Look {
  double rate = 0;
  bool mirrored = false;
  int dx = 0, dy = 0;
  int filter = 0;
  int scale = 0;
};

Look DrawLook(const Settings& settings, double rate, Random& random) {
  Look look{rate, false, 0, 0, settings.filter, settings.scale};
  look.rate *= random.Uniform(0.75, 1.35);
  look.mirrored = random.Below(2) == 1;
  look.dx = static_cast<int>(random.Below(2 * kShift + 1)) - kShift;
  look.dy = static_cast<int>(random.Below(2 * kShift + 1)) - kShift;
  // Three in ten smoothed, one in five magnified: the module's settings are the user's to choose.
  const std::uint32_t smoothing = random.Below(10);
  if (smoothing < 3) look.filter = smoothing < 2 ? 1 : 2;
  if (random.Below(5) == 0) look.scale = 2;
  return look;
}

void Mirror(LumaFrame& frame) {
  for (std::size_t row = 0; row < static_cast<std::size_t>(frame.height); row++) {
    const auto begin = frame.pixels.begin() + static_cast<std::ptrdiff_t>(row) * frame.width;
    std::reverse(begin, begin + frame.width);
  }
}

Settings ForLook(Settings settings, const OpenedClip& clip, const Look& look) {
  const SourceInfo& info = clip.frames->Info();
  settings.weights.clear();
  settings.no_weights = true;
  settings.threshold = kNoAlarm;
  settings.log = 0;
  settings.filter = look.filter;
  settings.scale = look.scale;
  settings.input_width = info.width;
  settings.input_height = info.height;
  settings.original_size.reset();
  settings.roi_width = clip.region.width;
  settings.roi_height = clip.region.height;
  const int left = look.mirrored ? info.width - clip.region.x - clip.region.width : clip.region.x;
  settings.roi_x = std::clamp(left + look.dx, 0, info.width - clip.region.width);
  settings.roi_y = std::clamp(clip.region.y + look.dy, 0, info.height - clip.region.height);
  return settings;
}

FeatureTrack Collect(const Module& module, const Settings& settings, const Clip& clip, const Look& look) {
  Clip looked_at = clip;
  looked_at.rate = look.rate;
  const OpenedClip opened = OpenClip(looked_at, look.rate, kShift);
  Detector detector(module, ForLook(settings, opened, look), opened.frames->Info());
  FeatureTrack track;
  track.features = detector.Context().Features;
  std::vector<double> times_s;
  LumaFrame frame;
  while (opened.frames->Next(frame)) {
    if (look.mirrored) Mirror(frame);
    if (!detector.Write(frame).analysed) continue;
    const auto* const histogram = detector.Context().MotionChunk;
    track.histograms.insert(track.histograms.end(), histogram, histogram + track.features);
    times_s.push_back(frame.time_s);
  }
  SetAims(track, times_s, opened.labels);
  return track;
}

}  // namespace

std::vector<FeatureTrack> CollectTracks(const Module& module, const Settings& settings,
                                        std::span<const Clip> clips, const Looks& looks, int jobs,
                                        const std::function<void()>& step) {
  const auto count = static_cast<std::size_t>(looks.count);
  std::vector<FeatureTrack> tracks(clips.size() * count);
  std::mutex stepping;
  InParallel(clips.size(), jobs, [&](std::size_t index) {
    const Clip& clip = clips[index];
    const double rate = clip.rate.value_or(settings.rate);
    Random random(looks.seed + index, kStream);
    for (std::size_t look = 0; look < count; look++) {
      const Look plain{rate, false, 0, 0, settings.filter, settings.scale};
      tracks[index * count + look] =
          Collect(module, settings, clip, look == 0 ? plain : DrawLook(settings, rate, random));
    }
    const std::lock_guard lock(stepping);
    step();
  });
  return tracks;
}

}  // namespace stopngo

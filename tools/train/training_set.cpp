// training_set.cpp: clips turned into feature tracks, each looked at in several ways.
#include "train/training_set.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

#include "base/parallel.h"
#include "base/streams.h"
#include "evaluate/evaluation.h"
#include "host/common/failure.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

// Half a block and more: the edges of what moves then fall everywhere in the blocks, and a region that a
// user has set a little off is no surprise.
constexpr int kShift = 16;  // pixels

/// Looks at the same frames: rendering or decoding them takes many times as long as their analysis.
constexpr std::size_t kLooksARate = 3;

struct Look {
  bool mirrored = false;
  int dx = 0, dy = 0;
  int filter = 0;
  int scale = 0;
};

double DrawRate(double rate, Random& random) { return rate * random.Uniform(0.75, 1.35); }

Look DrawLook(const Settings& settings, Random& random) {
  Look look{random.Below(2) == 1, 0, 0, settings.filter, settings.scale};
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
  settings = Watching(std::move(settings));
  settings.filter = look.filter;
  settings.scale = look.scale;
  settings.original_size.reset();
  Region region = clip.region;
  if (look.mirrored) region.x = info.width - region.x - region.width;
  region.x = std::clamp(region.x + look.dx, 0, info.width - region.width);
  region.y = std::clamp(region.y + look.dy, 0, info.height - region.height);
  return Placed(std::move(settings), region, info.width, info.height);
}

/// A detector that fills one track.
class Collector {
 public:
  Collector(const Module& module, const Settings& settings, const OpenedClip& clip, const Look& look,
            FeatureTrack& track)
      : detector_(module, ForLook(settings, clip, look), clip.frames->Info()), track_(track) {
    track_.features = detector_.Context().Features;
  }
  /// Whether the frame was analysed.
  bool Take(LumaFrame& frame) {
    if (!detector_.Write(frame).analysed) return false;
    const auto* const histogram = detector_.Context().MotionChunk;
    track_.histograms.insert(track_.histograms.end(), histogram, histogram + track_.features);
    return true;
  }

 private:
  Detector detector_;
  FeatureTrack& track_;
};

/// One pass over a clip's frames at one rate, a track a look.
void Collect(const Module& module, const Settings& settings, const Clip& clip, std::span<const Look> looks,
             std::span<FeatureTrack> tracks) {
  const OpenedClip opened = OpenClip(clip, 0, kShift);
  std::vector<std::unique_ptr<Collector>> collectors;
  for (std::size_t i = 0; i < looks.size(); i++) {
    collectors.push_back(std::make_unique<Collector>(module, settings, opened, looks[i], tracks[i]));
  }
  std::vector<double> times_s;
  LumaFrame frame;
  double last_s = 0;
  while (opened.frames->Next(frame)) {
    last_s = frame.time_s;
    LumaFrame mirrored = frame;
    Mirror(mirrored);
    bool analysed = false;
    for (std::size_t i = 0; i < looks.size(); i++) {
      analysed = collectors[i]->Take(looks[i].mirrored ? mirrored : frame);
    }
    if (analysed) times_s.push_back(frame.time_s);
  }
  CheckEnd(opened, last_s);
  for (FeatureTrack& track : tracks) SetAims(track, times_s, opened.labels);
}

/// All looks at a clip.
void CollectLooks(const Module& module, const Settings& settings, Clip clip, Random random,
                  std::span<FeatureTrack> tracks) {
  const double rate = clip.rate.value_or(settings.rate);
  for (std::size_t first = 0; first < tracks.size(); first += kLooksARate) {
    clip.rate = first == 0 ? rate : DrawRate(rate, random);
    std::vector<Look> drawn(std::min(kLooksARate, tracks.size() - first));
    for (std::size_t i = 0; i < drawn.size(); i++) {
      drawn[i] =
          first + i == 0 ? Look{false, 0, 0, settings.filter, settings.scale} : DrawLook(settings, random);
    }
    Collect(module, settings, clip, drawn, tracks.subspan(first, drawn.size()));
  }
}

}  // namespace

std::vector<FeatureTrack> CollectTracks(const Module& module, const Settings& settings,
                                        std::span<const Clip> clips, const Looks& looks, int jobs,
                                        const std::function<void()>& step) {
  const auto count = static_cast<std::size_t>(looks.count);
  std::vector<FeatureTrack> tracks(clips.size() * count);
  std::mutex stepping;
  InParallel(clips.size(), jobs, [&](std::size_t index) {
    const auto of_clip = std::span(tracks).subspan(index * count, count);
    try {
      CollectLooks(module, settings, clips[index], RandomOf(looks.seed + index, stream::kLooks), of_clip);
    } catch (const Failure& failure) {
      throw NamingClip(clips[index], failure);
    }
    const std::lock_guard lock(stepping);
    step();
  });
  return tracks;
}

}  // namespace stopngo

// preparation.cpp: all that is settled before the first frame.
#include "host/gstreamer/preparation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "host/common/failure.h"
#include "host/settings/setting_table.h"
#include "host/settings_in_force.h"
#include "vel_stopngo_ctx.h"

namespace stopngo::gst {

double RateOf(const GstVideoInfo& info) {
  return info.fps_n > 0 ? static_cast<double>(info.fps_n) / info.fps_d : 0;
}

Preparation::Preparation(const GivenSettings& given, const std::string& config) {
  Settings settings = given.Values();
  SettingsInForce in_force(settings, [&given](const std::string& name) { return given.Has(name); });
  if (!config.empty()) in_force.TakeFile(config);
  in_force.SettleWeights();
  setup_ = in_force.AsSetup();
  std::ranges::copy_if(SettingNames(), std::back_inserter(of_no_use_),
                       [&](const std::string& name) { return in_force.OfFile(name) && IsOfNoUse(name); });
}

// As the command does: a stream with fewer frames than are wanted is handed over as it is.
FrameFormat Preparation::FormatFor(const GstVideoInfo& info) const {
  const Settings& settings = setup_.settings;
  const double fps = RateOf(info);
  double rate = settings.rate > 0 && (fps == 0 || settings.rate < fps) ? settings.rate : fps;
  if (rate == 0) rate = kUnknownRate;
  const FrameSize size{info.width, info.height};
  if (OriginalSize(settings.original_size.value_or(size.width), settings.input_width) == size) {
    return {size.width, size.height, rate};
  }
  return {settings.input_width, settings.input_height, rate};
}

std::vector<std::string> Preparation::Check(const FrameFormat& frames) const {
  Setup setup = setup_;
  setup.frames = frames;
  const std::vector<Finding> findings = CheckSetup(module_, setup);
  std::vector<std::string> warnings;
  warnings.reserve(findings.size());
  for (const Finding& finding : findings) {
    const std::string sentence = SentenceOf(finding) + " (see the property " + finding.setting + ")";
    if (finding.severity == Severity::kError) throw Failure(sentence);
    warnings.push_back(sentence);
  }
  return warnings;
}

// The weights are put into the record. Loading them, the module tells so on standard output, and to lead that elsewhere
// would take along what the program's other threads write there meanwhile.
void Preparation::Open(const FrameFormat& frames, std::optional<Detector>& detector) {
  Settings settings = setup_.settings;
  if (!settings.no_weights && !network_) {
    network_ = ReadWeights(settings.weights, 2 * static_cast<std::size_t>(settings.features),
                           static_cast<std::size_t>(settings.hiddens), "the properties features and hiddens");
  }
  settings.weights.clear();
  settings.no_weights = true;
  settings.debug_fb.clear();
  detector.emplace(module_, settings, frames);
  if (network_) std::ranges::copy(network_->numbers, detector->Context().Weight);
}

SampledArea Preparation::SampledIn(const FrameFormat& frames) const {
  return ProbeSampledArea(module_, setup_.settings, frames);
}

PixelArea Preparation::LookedAt(const FrameFormat& frames) const {
  const SampledArea area = SampledIn(frames);
  const auto end = [](double start, double step, int count, int most) {
    return std::clamp(static_cast<int>(std::lround(start + step * (count - 1))) + 1, 0, most);
  };
  return {static_cast<int>(area.left), static_cast<int>(area.top),
          end(area.left, area.step_x, setup_.settings.roi_width, frames.width),
          end(area.top, area.step_y, setup_.settings.roi_height, frames.height)};
}

PixelArea Preparation::RegionIn(const GstVideoInfo& info) const {
  const Settings& s = setup_.settings;
  const auto part = [](int place, int working, int own) {
    return static_cast<int>(std::int64_t{place} * own / working);
  };
  const auto x = [&](int place) { return part(place, s.input_width, info.width); };
  const auto y = [&](int place) { return part(place, s.input_height, info.height); };
  return {x(s.roi_x), y(s.roi_y), x(s.roi_x + s.roi_width), y(s.roi_y + s.roi_height)};
}

}  // namespace stopngo::gst

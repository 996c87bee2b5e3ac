// preparation.h: all that is settled before the first frame: settings, module, weights, how frames are handed over.
#pragma once

#include <gst/video/video.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/check.h"
#include "host/common/luma.h"
#include "host/detector.h"
#include "host/gstreamer/luma_reader.h"
#include "host/gstreamer/properties.h"
#include "host/module/module.h"
#include "host/sampled_area.h"
#include "host/settings/weights_file.h"

namespace stopngo::gst {

/// Frames a second by a stream's caps; 0: that varies.
double RateOf(const GstVideoInfo& info);

class Preparation {
 public:
  /// config: file of settings; empty: none. Throws Failure: settings, files or the module are none.
  Preparation(const GivenSettings& given, const std::string& config);

  [[nodiscard]] const Settings& InForce() const { return setup_.settings; }
  /// Names of settings that the file has and that are of no use to a pipeline.
  [[nodiscard]] const std::vector<std::string>& OfNoUse() const { return of_no_use_; }

  /// How frames of a stream are handed over.
  [[nodiscard]] FrameFormat FormatFor(const GstVideoInfo& info) const;
  /// What is probably not what is wanted, a sentence each, of such frames. Throws Failure: what cannot work.
  [[nodiscard]] std::vector<std::string> Check(const FrameFormat& frames) const;
  /// Makes a detector, after a Check. Throws Failure.
  void Open(const FrameFormat& frames, std::optional<Detector>& detector);

  /// Where in frames that are handed over the module looks.
  [[nodiscard]] SampledArea SampledIn(const FrameFormat& frames) const;
  /// The pixels there.
  [[nodiscard]] PixelArea LookedAt(const FrameFormat& frames) const;
  /// The region, in frames of the stream, whatever size those have.
  [[nodiscard]] PixelArea RegionIn(const GstVideoInfo& info) const;

 private:
  Setup setup_;
  Module module_;
  std::optional<Network> network_;  ///< of the detector, once it was opened
  std::vector<std::string> of_no_use_;
};

}  // namespace stopngo::gst

// watcher.h: what the element does: a detector watches the frames of a stream as they pass.
#pragma once

#include <gst/video/video.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "host/detector.h"
#include "host/gstreamer/luma_reader.h"
#include "host/gstreamer/preparation.h"
#include "host/gstreamer/properties.h"
#include "host/gstreamer/seen_picture.h"
#include "host/gstreamer/telling.h"
#include "host/gstreamer/timeline.h"

namespace stopngo::gst {

enum class Drawing { kNone, kRegion, kAll };

/// What the application asks for. The first two are in force from the next start on, the others at once.
struct Wishes {
  GivenSettings settings;
  std::string config;           ///< file of settings; empty: none
  std::optional<double> speed;  ///< of the own vehicle, until a frame has taken it
  double last_speed = 0;        ///< told last, whether it was taken or not
  bool silent = true;           ///< messages of changes alone, and not of each frame that was handed over
  Drawing drawing = Drawing::kNone;
};

/// Calls come from one thread at a time, but for those of WithWishes.
class Watcher {
 public:
  /// element: in whose name things are told; outlives this.
  explicit Watcher(GstElement* element) : element_(element) {}

  template <typename Use>
  auto WithWishes(Use use) {
    const std::lock_guard lock(lock_);
    return use(wishes_);
  }

  /// Settles what can be settled without frames. Throws Failure.
  void Start();
  void Stop();
  /// Frames of this kind come next: says what speaks against the set-up. Throws Failure.
  void Expect(const GstVideoInfo& info);
  /// What comes does not follow what came: a seek.
  void Forget();
  /// A frame passes. Its pixels stay as they are, unless something is drawn; the buffer is exchanged for another one
  /// with the same pixels where something is attached to it and others hold it, too. Throws Failure when the module
  /// refuses the frame.
  void Watch(GstBuffer*& buffer, const GstSegment& segment);

 private:
  enum Remark { kBackwards, kUnstamped, kFalling, kUnmapped, kNoMemory, kUndrawn, kRemarks };

  void SayFormat(const GstVideoInfo& info, const FrameFormat& frames);
  void Open(const FrameFormat& frames);
  [[nodiscard]] bool Counts(GstBuffer* buffer, const GstSegment& segment);
  void Heed(const Moment& moment);
  [[nodiscard]] std::optional<FrameReport> Write(GstBuffer* buffer, std::int64_t index, double time_s);
  void Tell(GstBuffer*& buffer, const GstSegment& segment, const FrameReport& report);
  void Draw(GstBuffer*& buffer);
  void DrawAll(MappedFrame& frame);
  void WarnOnce(Remark remark, const std::string& sentence);

  GstElement* element_;
  std::mutex lock_;
  Wishes wishes_;

  std::optional<Preparation> preparation_;  ///< from start to stop
  // As frames are expected.
  GstVideoInfo info_{};
  FrameFormat frames_;  ///< as they are handed over
  PixelArea region_;    ///< in the stream's frames
  std::optional<Timeline> timeline_;
  std::optional<LumaReader> reader_;
  std::optional<Detector> detector_;
  std::optional<FrameReport> last_;     ///< of this detector
  std::optional<SeenPicture> picture_;  ///< while it is wanted

  std::int64_t index_ = 0;  ///< of the next frame since the start
  int decision_ = 0;        ///< told last
  std::string gate_;        ///< what of the last frame was told of gates; keeps its memory
  bool fresh_ = false;      ///< the detector has seen no frame
  std::array<bool, kRemarks> said_{};
};

}  // namespace stopngo::gst

// watcher.cpp: what the element does: a detector watches the frames of a stream as they pass.
#include "host/gstreamer/watcher.h"

#include <cstddef>
#include <new>
#include <utility>

#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/gstreamer/outline.h"

namespace stopngo::gst {
namespace {

/// Of all gates at once there are some 130 letters.
constexpr std::size_t kLongestGateText = 256;

std::string SizeText(FrameSize size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

FrameSize SizeOf(const GstVideoInfo& info) { return {info.width, info.height}; }
FrameSize SizeOf(const FrameFormat& frames) { return {frames.width, frames.height}; }

/// What a stream says of its frames' rows is nothing that would matter to a detector.
bool AreAlike(const FrameFormat& a, const FrameFormat& b) { return SizeOf(a) == SizeOf(b) && a.fps == b.fps; }

}  // namespace

void Watcher::Start() {
  GivenSettings given;
  std::string config;
  WithWishes([&](const Wishes& wishes) {
    given = wishes.settings;
    config = wishes.config;
  });
  preparation_.emplace(given, config);
  gate_.reserve(kLongestGateText);
  for (const std::string& name : preparation_->OfNoUse()) {
    Warn(element_, config + ": " + name + ": is the command's, and does nothing here");
  }
  index_ = 0;
  decision_ = 0;
  said_ = {};
}

// The detector's code goes with the module.
void Watcher::Stop() {
  picture_.reset();
  detector_.reset();
  reader_.reset();
  timeline_.reset();
  preparation_.reset();
}

void Watcher::Expect(const GstVideoInfo& info) {
  if (!IsUsableSize(SizeOf(info))) {
    throw Failure("frames of " + SizeText(SizeOf(info)) + ": a side has 1 to " +
                  std::to_string(kLongestSide) + " pixels");
  }
  const FrameFormat frames = preparation_->FormatFor(info);
  const bool goes_on = detector_ && AreAlike(frames, frames_) && RateOf(info) == RateOf(info_);
  if (!goes_on) {
    detector_.reset();
    for (const std::string& warning : preparation_->Check(frames)) Warn(element_, warning);
    Open(frames);
    timeline_.emplace(preparation_->InForce().rate, RateOf(info));
  }
  SayFormat(info, frames);
  picture_.reset();
  reader_.emplace(SizeOf(info), SizeOf(frames), preparation_->LookedAt(frames));
  info_ = info;
  frames_ = frames;
  region_ = preparation_->RegionIn(info);
}

void Watcher::Open(const FrameFormat& frames) {
  preparation_->Open(frames, detector_);
  fresh_ = true;
  last_.reset();
  picture_.reset();
}

void Watcher::SayFormat(const GstVideoInfo& info, const FrameFormat& frames) {
  const auto [width, height] = SizeOf(info);
  if (SizeOf(info) != SizeOf(frames)) {
    const bool same_shape = std::int64_t{width} * frames.height == std::int64_t{height} * frames.width;
    Inform(element_, "frames of " + SizeText(SizeOf(info)) +
                         (same_shape ? " are scaled to " : " are stretched to ") + SizeText(SizeOf(frames)) +
                         " for the module alone");
  }
  if (GST_VIDEO_INFO_IS_INTERLACED(&info)) Inform(element_, "interlaced frames are handed over whole");
  if (info.par_n != info.par_d) Inform(element_, "pixels that are not square are taken for square ones");
}

void Watcher::Forget() {
  if (timeline_) timeline_->Forget();
}

void Watcher::Watch(GstBuffer*& buffer, const GstSegment& segment) {
  if (!detector_) return;
  const std::int64_t index = index_++;
  if (Counts(buffer, segment)) {
    const Moment moment = timeline_->At(GST_BUFFER_PTS(buffer), GST_BUFFER_DURATION(buffer));
    Heed(moment);
    if (moment.taken) {
      if (const auto report = Write(buffer, index, moment.time_s)) Tell(buffer, segment, *report);
    }
  }
  Draw(buffer);
}

// Frames that are shown in another order, or left out, show no motion that there was. Those outside the segment are
// not shown, and those that stand for a gap show nothing.
bool Watcher::Counts(GstBuffer* buffer, const GstSegment& segment) {
  constexpr unsigned kLeavesOut = GST_SEGMENT_FLAG_TRICKMODE | GST_SEGMENT_FLAG_TRICKMODE_KEY_UNITS |
                                  GST_SEGMENT_FLAG_TRICKMODE_FORWARD_PREDICTED;
  if (segment.rate < 0 || (segment.flags & kLeavesOut) != 0) {
    WarnOnce(kBackwards, "frames that are played backwards or left out on the way are not looked at");
    return false;
  }
  if (GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_GAP)) return false;
  if (!GST_BUFFER_PTS_IS_VALID(buffer)) {
    WarnOnce(kUnstamped,
             "frames without time stamps are taken to be " + NumberText(timeline_->Period()) + " s apart");
    return true;
  }
  return segment.format != GST_FORMAT_TIME || GST_CLOCK_TIME_IS_VALID(gst_segment_to_running_time(
                                                  &segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer)));
}

void Watcher::Heed(const Moment& moment) {
  if (moment.falls) WarnOnce(kFalling, "frames with time stamps that do not grow are passed over");
  if (moment.before == Moment::Break::kGap || moment.before == Moment::Break::kReturn) {
    Warn(element_,
         Print("the time stamps jump by %.3f s at frame %lld: what comes is not compared with what came",
               moment.step_s, static_cast<long long>(index_ - 1)));
  }
  if (moment.before == Moment::Break::kGap) detector_->Restart();
  const bool elsewhere = moment.before == Moment::Break::kStart || moment.before == Moment::Break::kReturn;
  if (elsewhere && !fresh_) Open(frames_);
}

std::optional<FrameReport> Watcher::Write(GstBuffer* buffer, std::int64_t index, double time_s) {
  const MappedFrame frame(info_, buffer);
  if (!frame.Valid()) {
    WarnOnce(kUnmapped, Print("frame %lld: the luma cannot be read; such frames pass without being looked at",
                              static_cast<long long>(index)));
    return std::nullopt;
  }
  const auto speed = WithWishes([](Wishes& wishes) { return std::exchange(wishes.speed, std::nullopt); });
  if (speed) detector_->SetSpeed(*speed, time_s);
  fresh_ = false;
  try {
    const FrameReport report =
        detector_->Write({frames_.width, frames_.height, index, time_s, reader_->Read(frame)});
    if (const char* const remark = detector_->TakeRemark()) Warn(element_, remark);
    last_ = report;
    if (picture_) picture_->Record(report);
    return report;
  } catch (const std::bad_alloc&) {
    WarnOnce(kNoMemory, Print("frame %lld: not enough memory; such frames pass without being looked at",
                              static_cast<long long>(index)));
    return std::nullopt;
  }
}

void Watcher::Tell(GstBuffer*& buffer, const GstSegment& segment, const FrameReport& report) {
  PutClosedText(report.closed, gate_);
  const Telling telling{
      .report = report,
      .gate = gate_.c_str(),
      .changed = report.decision != std::exchange(decision_, report.decision),
      .timestamp = GST_BUFFER_PTS(buffer),
      .running_time = gst_segment_to_running_time(&segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer))};
  // Of a buffer that others hold, too, the outside is copied, and not the pixels.
  buffer = gst_buffer_make_writable(buffer);
  AttachTelling(buffer, region_, telling);
  const bool silent = WithWishes([](const Wishes& wishes) { return wishes.silent; });
  if (telling.changed || !silent) PostTelling(element_, telling);
}

void Watcher::Draw(GstBuffer*& buffer) {
  const Drawing drawing = WithWishes([](const Wishes& wishes) { return wishes.drawing; });
  if (drawing != Drawing::kAll) picture_.reset();
  if (drawing == Drawing::kNone) return;
  buffer = gst_buffer_make_writable(buffer);
  MappedFrame frame(info_, buffer, GST_MAP_READWRITE);
  if (!frame.Valid()) return;
  if (drawing == Drawing::kRegion) DrawOutline(frame, region_, decision_);
  if (drawing == Drawing::kAll) DrawAll(frame);
}

// Between the frames that are handed over, what was made of the last one.
void Watcher::DrawAll(MappedFrame& frame) {
  if (!last_) return;
  if (!frame.IsWhole()) {
    WarnOnce(kUndrawn, "frames whose pixels do not all lie in their buffer are not drawn into");
    return;
  }
  try {
    if (!picture_) {
      picture_.emplace(info_, frames_, preparation_->SampledIn(frames_));
      picture_->Record(*last_);
    }
    picture_->Draw(frame, *last_, detector_->Context());
  } catch (const std::bad_alloc&) {
    WarnOnce(kNoMemory, "not enough memory to draw");
  }
}

void Watcher::WarnOnce(Remark remark, const std::string& sentence) {
  if (!std::exchange(said_.at(remark), true)) Warn(element_, sentence);
}

}  // namespace stopngo::gst

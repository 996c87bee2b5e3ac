// timeline.cpp: which frames of a stream are handed over, by their presentation time stamps.
#include "host/gstreamer/timeline.h"

#include <algorithm>

#include "host/common/luma.h"

namespace stopngo::gst {
namespace {

constexpr double kSameRate = 1e-6;    // frames a second
constexpr double kStepsOfJump = 2.5;  // with one frame left out

double Seconds(GstClockTimeDiff time) { return static_cast<double>(time) / static_cast<double>(GST_SECOND); }

double SecondsBetween(GstClockTime from, GstClockTime to) { return Seconds(GST_CLOCK_DIFF(from, to)); }

}  // namespace

// A stream that has fewer frames than that is handed over as it is, and one of few frames has no jump in every step.
Timeline::Timeline(double rate, double fps)
    : rate_(fps > 0 && rate > fps + kSameRate ? 0 : rate),
      fps_(fps),
      jump_s_(fps > 0 ? std::max(kJump_s, kStepsOfJump / fps) : kJump_s) {}

double Timeline::Period() const { return 1 / (fps_ > 0 ? fps_ : kUnknownRate); }

Moment Timeline::At(GstClockTime pts, GstClockTime duration) {
  if (!GST_CLOCK_TIME_IS_VALID(pts)) {
    pts = last_ ? *last_ + static_cast<GstClockTime>(Period() * static_cast<double>(GST_SECOND)) : 0;
  }
  Moment moment;
  if (!last_) {
    moment.before = Moment::Break::kStart;
  } else {
    moment.step_s = SecondsBetween(*last_, pts);
    if (moment.step_s > jump_s_) moment.before = Moment::Break::kGap;
    if (moment.step_s < -jump_s_) moment.before = Moment::Break::kReturn;
  }
  if (moment.before == Moment::Break::kNone && moment.step_s <= 0) {
    moment.falls = true;
    return moment;
  }
  if (moment.before == Moment::Break::kStart || moment.before == Moment::Break::kReturn) start_ = pts;
  if (moment.before != Moment::Break::kNone) {
    anew_ = pts;
    if (rate_ > 0) pace_.emplace(rate_, 1 / Period());
  }
  last_step_s_ = moment.before == Moment::Break::kNone ? moment.step_s : 0;
  last_ = pts;
  moment.time_s = SecondsBetween(start_, pts);
  const double pace_s = SecondsBetween(anew_, pts);
  moment.taken = !pace_ || pace_->Takes(pace_s, pace_s + Lasts(duration));
  return moment;
}

// A guess that is too long would step over times for which there are frames, so none is longer than the time from one
// that is handed over to the next.
double Timeline::Lasts(GstClockTime duration) const {
  if (GST_CLOCK_TIME_IS_VALID(duration) && duration > 0)
    return Seconds(static_cast<GstClockTimeDiff>(duration));
  if (fps_ > 0 || last_step_s_ == 0) return Period();
  return std::min(last_step_s_, 1 / rate_);
}

}  // namespace stopngo::gst

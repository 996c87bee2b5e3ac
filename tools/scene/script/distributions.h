// distributions.h: what scenes are drawn from: every range and share, with where it comes from.
//
// "Street" are recordings that nothing was trained on, measured with `stopngo features --table`: seven departures
// and 3,500 frame pairs without one, from cameras in cars, phones and posts. "Judged" are ranges that were chosen
// by looking at scenes beside recordings.
#pragma once

#include "base/random.h"
#include "scene/recipe/chance.h"

namespace stopngo {

struct Range {
  double low;
  double high;
  [[nodiscard]] constexpr Range Both() const { return {-high, high}; }
};

inline double Draw(Range range, Random& random) { return random.Uniform(range.low, range.high); }
inline double DrawLog(Range range, Random& random) { return LogUniform(random, range.low, range.high); }
/// The side first: which factor of a product is worked out first is the compiler's.
inline double DrawAside(Range range, Random& random) {
  const double side = EitherSide(random);
  return side * Draw(range, random);
}

namespace draw {

// --- The vehicle ahead ------------------------------------------------------------------------------------
inline constexpr Range kLeadWidth_px{60, 360};  // of 800 columns; street: 60 to 130 are common
inline constexpr Range kLeadDistance_m{3, 25};  // a car 60 pixels wide is 21 m away at 60 degrees of view
inline constexpr double kLargeLead = 0.85;      // of leads are at least 130 pixels wide: queues are dense
inline constexpr double kLargeWidth_px = 130;
// Most small ones are near, before the lens of a dashboard camera: 122 degrees of view and less.
inline constexpr double kWideLens = 0.75;
inline constexpr Range kQueue_m{4, 12};
inline constexpr double kWidestFocal = 0.28;
// Of the middle of its rear from the camera's axis, metres: in line, on the next wheel track, beside. Street: in
// the first second and a half of departures 22 to 51 % of the motion is net sideways, which a lead in line with the
// camera does not give.
inline constexpr double kInLine = 0.3, kBeside = 0.3;
inline constexpr Range kInLine_m{0, 0.5}, kTrack_m{0.4, 1.6}, kBeside_m{1.2, 3.2};
inline constexpr double kBumper_m = 0.3;        // its height, which is in the picture
inline constexpr double kPictureHalf_px = 400;  // across; of a lead's rear no more than a seventh is cut off
inline constexpr double kOblique = 0.4;         // of leads stand at an angle
inline constexpr Range kHeading{0, 0.045};      // turns, either way: 16 degrees
// Its way when it leaves: around a bend or into a side street, from where it stands or after some metres.
inline constexpr double kBends = 0.45, kTurnsOff = 0.15;
inline constexpr Range kBendRadius_m{10, 50}, kCornerRadius_m{6, 12};
inline constexpr Range kBendAfter_m{0, 3}, kCornerAfter_m{1, 9};

// --- How it leaves ----------------------------------------------------------------------------------------
// Street: the sums of a departure come to 1,250 within its first second, at 0.2 to 3.5 m/s². Half are drawn from
// what drivers mostly do at lights, half from all.
inline constexpr Range kUsualStart{1, 3};
inline constexpr Range kAnyStart{0.25, 3.5};
inline constexpr Range kBuildUp_s{0.2, 1.2};
// What of its distance it has to gain within a time to be one that can be told at all, but within these bounds.
inline constexpr double kNoticed = 0.1;
inline constexpr Range kNoticed_m{0.45, 2};
inline constexpr double kNoticed_s = 2.2;
inline constexpr Range kCreepStart{0.5, 1.8}, kCreepSpeed{0.35, 1.5};
inline constexpr Range kCreepHold_s{0, 1.2};

// --- Camera -----------------------------------------------------------------------------------------------
inline constexpr Range kFocal{0.46, 1.08};  // 95 to 50 degrees of view
inline constexpr Range kHorizon{0.38, 0.6};
inline constexpr Range kYaw{0, 0.022};  // turns, either way: 8 degrees that a camera looks aside
// What holds it: behind a windscreen, a hand with a stabiliser, a post.
inline constexpr double kInCar = 0.62, kInHand = 0.2;
// Street: a camera in a car at rest gives all-zero pairs a quarter of the time, half of them below a sum of 9.
inline constexpr double kEngineOff = 0.45;
inline constexpr Range kEngineOff_px{0, 0.04}, kIdling_px{0.06, 0.7};
// Street: phones and posts give sums of 79 / 201 / 435 / 803 / 1255 (10 to 90 %) with nobody moving.
inline constexpr Range kHand_px{0.4, 3.5}, kPost_px{0.15, 1.6};
// Where a person puts the region, pixels either way on both axes.
inline constexpr int kRegionOff_px = 25;
// With nobody ahead to put it on. Street: what crosses there gives sums of 355 in the middle, which a region far
// below the horizon never sees.
inline constexpr int kFreeRegionAcross_px = 130;
inline constexpr Range kFreeRegionBelow_px{-10, 90};

// --- Sensor and coding ------------------------------------------------------------------------------------
inline constexpr double kUncoded = 0.12;
inline constexpr Range kCompression{0.08, 0.75};
inline constexpr Range kRefresh_s{0.5, 10};
inline constexpr double kExposureDrifts = 0.3, kWhiteBalanceSteps = 0.15;
inline constexpr Range kExposureStep{0.94, 1.06};  // judged: what a phone's automatic does by itself

}  // namespace draw
}  // namespace stopngo

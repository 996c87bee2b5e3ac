// gleam.cpp: beams, reflections, shadows of clouds and trees, flashing lamps.
#include "scene/actors/gleam.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/common/exact_math.h"
#include "scene/paint/noise.h"
#include "scene/paint/sheet.h"
#include "scene/paint/stroke.h"
#include "scene/recipe/chance.h"
#include "scene/recipe/light.h"
#include "scene/space/projection.h"

namespace stopngo {
namespace {

/// 1 in the middle of a stretch, falling to 0 within its soft edges.
double Inside(double value, double low, double high, double edge) {
  return std::clamp(std::min(value - low, high - value) / edge, 0.0, 1.0);
}

/// A bump from -1 to 1.
double Bump(double value) {
  const double inside = std::max(0.0, 1 - value * value);
  return inside * inside;
}

/// A pattern that wanders over a part of the vehicle ahead.
class Gleam : public Actor {
 public:
  struct Course {
    double low, high;    ///< part of the vehicle's height
    double when, speed;  ///< when its middle is at the vehicle's middle; metres a second
    double half_width;   ///< metres
    double glow;         ///< grey levels that a beam adds
    double opacity;      ///< of a mirrored picture
    std::uint32_t seed;
  };
  Gleam(const Stage& stage, const Course& course) : stage_(stage), course_(course) {}

  [[nodiscard]] std::optional<double> Distance(double time_s, const Camera& camera) const override {
    if (std::fabs(At(time_s)) > stage_.lead_half_width + course_.half_width) {
      return std::nullopt;
    }
    // Right before it, also where it stands obliquely.
    return PlaceOf(camera, stage_.lead_offset, stage_.lead_distance(time_s)).ahead - 0.3;
  }

  void Draw(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const override {
    const double z = stage_.lead_distance(time_s);
    const auto foot = Project(camera, {stage_.lead_offset, 0, z});
    if (!foot) {
      return;
    }
    const double half = 0.94 * stage_.lead_half_width * foot->scale;
    const double top = foot->row - course_.high * stage_.lead_height * foot->scale;
    const double bottom = foot->row - course_.low * stage_.lead_height * foot->scale;
    const Stretch rows = sheet.Rows(top, bottom);
    const Stretch columns = sheet.Columns(foot->column - half, foot->column + half);
    const double edge = std::max(2.0, 0.12 * half);
    std::vector<double> shares;
    std::vector<double> tones;
    for (int column = columns.first; column < columns.end; column++) {
      const double aside = column + 0.5 - foot->column;
      const double from_middle = aside / foot->scale - At(time_s);
      shares.push_back(Bump(from_middle / course_.half_width) * Inside(aside, -half, half, edge));
      const auto place = static_cast<float>(from_middle);
      tones.push_back(static_cast<double>(light.ambient) *
                      (120 + 90 * static_cast<double>(ValueNoise(3 * place, 0.5F, course_.seed))));
    }
    for (int row = rows.first; row < rows.end; row++) {
      sheet.Touch(row, columns);
      const double down = Inside(row + 0.5, top, bottom, edge);
      for (int column = columns.first; column < columns.end; column++) {
        const auto i = static_cast<std::size_t>(column - columns.first);
        const double share = down * shares[i];
        sheet.Blend(row, column, share * course_.opacity, share * course_.opacity * tones[i]);
        sheet.Glow(row, column, share * course_.glow);
      }
    }
  }

 private:
  [[nodiscard]] double At(double time_s) const { return course_.speed * (time_s - course_.when); }

  Stage stage_;
  Course course_;
};

/// Shadows that pass: of a cloud with one soft edge, or of leaves.
class Shade : public ScreenEffect {
 public:
  Shade(const Stage& stage, Random& random) : stage_(stage) {
    leaves_ = random.Below(2) == 0;
    depth_ = random.Uniform(0.08, leaves_ ? 0.3 : 0.4);
    when_ = stage.event_s + random.Uniform(-2, 2);
    const double side = EitherSide(random);
    speed_ = side * random.Uniform(0.05, 0.8) * stage.width;
    grain_ = random.Uniform(0.03, 0.25) * stage.width;
    seed_ = static_cast<std::uint32_t>(random.Next());
  }
  void Draw(double time_s, Sheet& sheet) const override {
    const double wandered = speed_ * (time_s - when_);
    std::vector<double> shares;
    for (int column = 0; column < sheet.Width(); column++) {
      const double at = column + 0.5 + stage_.window_x - wandered;
      const double middle = at - 0.5 * stage_.width;
      shares.push_back(leaves_ ? Pattern(at, 0.5F) : std::clamp(0.5 + middle / (4 * grain_), 0.0, 1.0));
    }
    const double sway = 0.3 * SineOfTurns(0.4 * time_s);
    for (int row = 0; row < sheet.Height(); row++) {
      const double at = row + 0.5 + stage_.window_y;
      const double down = leaves_ ? Pattern(at + sway * grain_, 7.5F) : 1.0;
      sheet.Touch(row, {0, sheet.Width()});
      for (int column = 0; column < sheet.Width(); column++) {
        sheet.Blend(row, column, depth_ * down * shares[static_cast<std::size_t>(column)], 0);
      }
    }
  }

 private:
  /// 0 … 1 along one axis.
  [[nodiscard]] double Pattern(double at, float line) const {
    return 0.5 + 0.5 * static_cast<double>(ValueNoise(static_cast<float>(at / grain_), line, seed_));
  }

  Stage stage_;
  bool leaves_ = false;
  double depth_ = 0, when_ = 0, speed_ = 0, grain_ = 0;
  std::uint32_t seed_ = 0;
};

/// A lamp that flashes beside the picture or in it, and what it throws onto everything.
class Beacon : public ScreenEffect {
 public:
  Beacon(const Stage& stage, Random& random) : stage_(stage) {
    rate_ = random.Uniform(1, 2.2);
    twice_ = random.Below(2) == 0;  // as blue ones do
    begin_ = std::max(0.0, stage.event_s - random.Uniform(1, 5));
    end_ = begin_ + random.Uniform(3, stage.length_s);
    x_ = random.Uniform(-0.3, 1.3) * stage.width;
    y_ = random.Uniform(0.25, 0.55) * stage.height;
    level_ = random.Uniform(6, 25) * (1 + 1.5 * stage.night);
  }
  void Draw(double time_s, Sheet& sheet) const override {
    if (time_s < begin_ || time_s > end_) {
      return;
    }
    const double turns = rate_ * time_s;
    const double phase = turns - std::floor(turns);
    const double flash = Bump((phase - 0.3) / 0.12) + (twice_ ? Bump((phase - 0.6) / 0.12) : 0.0);
    if (flash <= 0) {
      return;
    }
    const double column = x_ - stage_.window_x;
    const double row = y_ - stage_.window_y;
    DrawGlow({column, row, 0.9 * stage_.width}, level_ * flash, sheet);
    DrawGlow({column, row, 0.03 * stage_.width}, 170 * flash, sheet);
  }

 private:
  Stage stage_;
  double rate_ = 0;
  bool twice_ = false;
  double begin_ = 0, end_ = 0, x_ = 0, y_ = 0, level_ = 0;
};

Gleam::Course Wander(const Stage& stage, double slowest, double fastest, Random& random) {
  Gleam::Course course{};
  course.when = stage.event_s + random.Uniform(-2, 2);
  const double side = EitherSide(random);
  course.speed = side * random.Uniform(slowest, fastest);
  course.seed = static_cast<std::uint32_t>(random.Next());
  return course;
}

}  // namespace

Actors MakeHeadlampSweep(const Stage& stage, Random& random) {
  if (!stage.lead_present) return {};
  Actors actors;
  const std::uint32_t count = 1 + random.Below(3);
  for (std::uint32_t i = 0; i < count; i++) {
    Gleam::Course course = Wander(stage, 0.4, 5, random);
    course.low = 0.1;
    course.high = random.Uniform(0.6, 1);
    course.half_width = random.Uniform(0.3, 1.2);
    course.glow = random.Uniform(8, 22) * (1 + 2 * stage.night);
    actors.push_back(std::make_unique<Gleam>(stage, course));
  }
  return actors;
}

Actors MakeReflection(const Stage& stage, Random& random) {
  if (!stage.lead_present) return {};
  Actors actors;
  const std::uint32_t count = 1 + random.Below(3);
  for (std::uint32_t i = 0; i < count; i++) {
    Gleam::Course course = Wander(stage, 0.2, 3, random);
    const bool window = random.Below(3) != 0;
    course.low = window ? 0.63 : 0.25;
    course.high = window ? 0.95 : 0.62;
    course.half_width = random.Uniform(0.4, 2);
    course.opacity = random.Uniform(0.12, window ? 0.55 : 0.25);
    actors.push_back(std::make_unique<Gleam>(stage, course));
  }
  return actors;
}

std::unique_ptr<ScreenEffect> MakeShade(const Stage& stage, Random& random) {
  return std::make_unique<Shade>(stage, random);
}

std::unique_ptr<ScreenEffect> MakeBeacon(const Stage& stage, Random& random) {
  return std::make_unique<Beacon>(stage, random);
}

}  // namespace stopngo

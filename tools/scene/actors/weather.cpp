// weather.cpp: drops that come and go by chance, and blades that sweep over them.
#include "scene/actors/weather.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/common/exact_math.h"
#include "scene/paint/noise.h"
#include "scene/paint/sheet.h"
#include "scene/paint/stroke.h"

namespace stopngo {
namespace {

/// Something that lives for a while and then comes back elsewhere: its life's number and its age.
struct Life {
  std::int64_t number;
  double age_s;
};

Life LifeAt(double time_s, double length_s, double offset) {
  const double lives = time_s / length_s + offset;
  const double number = std::floor(lives);
  return {static_cast<std::int64_t>(number), (lives - number) * length_s};
}

/// What is drawn for one life of one of many things.
Random RandomOfLife(std::uint64_t seed, const Life& life, std::uint64_t index) {
  return {seed + static_cast<std::uint64_t>(life.number + (1 << 20)) * 0x10001, index};
}

/// One or two blades that swing about pivots below the picture. Places and lengths in widths of it.
class Blades {
 public:
  Blades(const Stage& stage, Random& random) : stage_(stage) {
    sweep_s_ = 1 / random.Uniform(0.5, 1.2);
    pause_s_ = random.Below(2) == 0 ? 0 : random.Uniform(1, 5);
    begin_s_ = random.Below(3) == 0 ? stage.event_s + random.Uniform(-2, 2) : -100;
    pivots_ = {random.Uniform(0.1, 0.5)};
    if (random.Below(3) != 0) {
      pivots_.push_back(pivots_[0] + random.Uniform(0.4, 0.6));
    }
    length_ = random.Uniform(0.5, 0.85);
    below_ = random.Uniform(0.66, 0.75);
    parked_ = random.Uniform(-0.24, -0.22);
    raised_ = random.Uniform(0.02, 0.14);
    thickness_ = random.Uniform(0.006, 0.016);
    blur_ = random.Uniform(0.006, 0.02);
    opacity_ = random.Uniform(0.65, 0.95);
  }

  void Draw(double time_s, Sheet& sheet) const {
    const double raised = Raised(time_s);
    const double width = stage_.width;
    for (const double pivot : pivots_) {
      const auto dab = [&](double along) {
        const auto [x, y] = Tip(pivot, raised, along);
        return Dab{x, y, thickness_ * width};
      };
      // The film of water behind the blade shows for a moment.
      if (const double before = Raised(time_s - 0.06); before != raised) {
        const auto [x1, y1] = Tip(pivot, before, 0.25);
        const auto [x2, y2] = Tip(pivot, before, 1);
        DrawLimb({x1, y1, 1.5 * thickness_ * width}, {x2, y2, 2 * thickness_ * width},
                 {190 * (1 - 0.85 * stage_.night), 0.12, 2 * blur_ * width}, sheet);
      }
      DrawLimb(dab(0.15), dab(1), {16, opacity_, blur_ * width}, sheet);
    }
  }

  /// When a blade last passed a place of the picture before a time.
  [[nodiscard]] std::optional<double> LastPass(double time_s, double column, double row) const {
    std::optional<double> last;
    for (const double pivot : pivots_) {
      if (const auto share = ShareAt(pivot, column, row)) {
        const double period = sweep_s_ + pause_s_;
        const double since = std::max(0.0, time_s - begin_s_);
        const double cycle = std::floor(since / period) * period;
        const double up = 0.5 * *share * sweep_s_;
        for (const double at : {cycle + sweep_s_ - up, cycle + up, cycle - period + sweep_s_ - up}) {
          if (at >= 0 && at <= since) {
            last = std::max(last.value_or(-1e9), begin_s_ + at);
          }
        }
      }
    }
    return last;
  }

 private:
  struct Point {
    double x, y;
  };
  [[nodiscard]] double Raised(double time_s) const {
    if (time_s < begin_s_) {
      return 0;
    }
    const double period = sweep_s_ + pause_s_;
    const double cycles = (time_s - begin_s_) / period;
    const double phase = std::min(1.0, (cycles - std::floor(cycles)) * period / sweep_s_);
    return Eased(1 - std::fabs(2 * phase - 1));
  }
  [[nodiscard]] Point Tip(double pivot, double raised, double along) const {
    const double turns = parked_ + (raised_ - parked_) * raised;
    const double reach = along * length_;
    return {(pivot + reach * SineOfTurns(turns)) * stage_.width - stage_.window_x,
            (below_ - reach * SineOfTurns(turns + 0.25)) * stage_.width - stage_.window_y};
  }
  /// On which side of the blade a place lies tells, by bisection, when the blade is there.
  [[nodiscard]] std::optional<double> ShareAt(double pivot, double column, double row) const {
    const Point root = Tip(pivot, 0, 0);
    const double dx = column - root.x;
    const double dy = row - root.y;
    const double reach = length_ * stage_.width;
    const auto ahead = [&](double share) {
      const Point tip = Tip(pivot, Eased(share), 1);
      return (tip.x - root.x) * dy - (tip.y - root.y) * dx > 0;
    };
    if (dx * dx + dy * dy > reach * reach || !ahead(0) || ahead(1)) {
      return std::nullopt;
    }
    double low = 0;
    double high = 1;
    for (int step = 0; step < 16; step++) {
      const double middle = 0.5 * (low + high);
      (ahead(middle) ? low : high) = middle;
    }
    return low;
  }

  Stage stage_;
  double sweep_s_ = 0, pause_s_ = 0, begin_s_ = 0;
  std::vector<double> pivots_;
  double length_ = 0, below_ = 0;   ///< of the pivots, from the picture's upper edge
  double parked_ = 0, raised_ = 0;  ///< turns from upright
  double thickness_ = 0, blur_ = 0, opacity_ = 0;
};

/// Drops on the glass, each a small lens that shows the street upside down: bright below, dark above.
class WetGlass : public ScreenEffect {
 public:
  WetGlass(const Stage& stage, bool wiped, double most, Random& random) : stage_(stage) {
    if (wiped) {
      blades_.emplace(stage, random);
    }
    count_ = static_cast<std::uint64_t>(random.Uniform(0, most));
    size_ = random.Uniform(0.003, 0.009) * stage.width;
    contrast_ = random.Uniform(0.2, 0.6);
    seed_ = random.Next();
  }
  void Draw(double time_s, Sheet& sheet) const override {
    for (std::uint64_t i = 0; i < count_; i++) {
      DrawDrop(i, time_s, sheet);
    }
    if (blades_) {
      blades_->Draw(time_s, sheet);
    }
  }

 private:
  void DrawDrop(std::uint64_t index, double time_s, Sheet& sheet) const {
    Random slot(seed_, index);
    const double length_s = slot.Uniform(2, 12);
    const Life life = LifeAt(time_s, length_s, slot.Uniform(0, 1));
    Random random = RandomOfLife(seed_, life, index);
    const double column = random.Uniform(-0.02, 1.02) * stage_.width - stage_.window_x;
    const double start = random.Uniform(-0.02, 1.02) * stage_.height - stage_.window_y;
    const double radius = size_ * random.Uniform(0.4, 1.6);
    // The big ones run down after a while.
    const double runs = random.Uniform(0.3, 1) * length_s;
    const double speed = radius > 1.2 * size_ ? random.Uniform(0.02, 0.3) * stage_.height : 0.0;
    const double row = start + speed * std::max(0.0, life.age_s - runs);
    if (blades_) {
      const auto pass = blades_->LastPass(time_s, column, row);
      if (pass && *pass > time_s - life.age_s) {
        return;
      }
    }
    const double fade = std::clamp((length_s - life.age_s) / 0.4, 0.0, 1.0) * contrast_;
    const double day = 1 - 0.85 * stage_.night;
    if (row > start) {
      DrawLimb({column, start, 0.3 * radius}, {column, row, 0.6 * radius}, {150 * day, 0.3 * fade, 2}, sheet);
    }
    DrawOval({column, row, radius, 1.15 * radius}, {70 * day, fade, 2}, sheet);
    DrawOval({column, row + 0.4 * radius, 0.6 * radius, 0.55 * radius}, {215 * day, 0.8 * fade, 1.5}, sheet);
  }

  Stage stage_;
  std::optional<Blades> blades_;
  std::uint64_t count_ = 0;
  double size_ = 0, contrast_ = 0;
  std::uint64_t seed_ = 0;
};

/// Rain or snow between us and the street.
class Falling : public ScreenEffect {
 public:
  Falling(const Stage& stage, bool snow, Random& random) : stage_(stage), snow_(snow) {
    count_ = static_cast<std::uint64_t>(random.Uniform(20, snow ? 200 : 120));
    speed_ = snow ? random.Uniform(0.7, 1.8) : random.Uniform(6, 9);
    wind_ = random.Uniform(-1, 1) * (snow ? 1.2 : 2.5);
    opacity_ = snow ? random.Uniform(0.4, 0.9) : random.Uniform(0.08, 0.3);
    size_m_ = snow ? random.Uniform(0.003, 0.008) : 0.0012;
    farthest_ = snow ? 9 : 5;
    seed_ = random.Next();
  }
  void Draw(double time_s, Sheet& sheet) const override {
    for (std::uint64_t i = 0; i < count_; i++) {
      DrawOne(i, time_s, sheet);
    }
  }

 private:
  void DrawOne(std::uint64_t index, double time_s, Sheet& sheet) const {
    Random slot(seed_, index);
    const double z = slot.Uniform(0.8, farthest_);
    const double scale = stage_.focal / z;
    const double fall = 1.3 * stage_.height / scale;  // a little more than the picture's height
    const double length_s = fall / speed_;
    const Life life = LifeAt(time_s, length_s, slot.Uniform(0, 1));
    Random random = RandomOfLife(seed_, life, index);
    const double start = random.Uniform(-0.3, 1.3) * stage_.width;
    const double sway = snow_ ? 0.05 * SineOfTurns(0.6 * time_s + slot.Uniform(0, 1)) : 0;
    const double column = start + (wind_ * life.age_s + sway) * scale - stage_.window_x;
    const double row = -0.15 * stage_.height + speed_ * life.age_s * scale - stage_.window_y;
    const double tone = 225 - 150 * stage_.night;
    const double radius = size_m_ * scale;
    // As far as it falls while the shutter is open; what is near is out of focus.
    constexpr double kShutter_s = 0.012;
    const Dab from{column, row, radius};
    const Dab to{column + wind_ * kShutter_s * scale, row + speed_ * kShutter_s * scale, radius};
    DrawLimb(from, to, {tone, opacity_, 1 + 2 / z}, sheet);
  }

  Stage stage_;
  bool snow_;
  std::uint64_t count_ = 0;
  double speed_ = 0, wind_ = 0, opacity_ = 0, size_m_ = 0, farthest_ = 0;
  std::uint64_t seed_ = 0;
};

}  // namespace

std::unique_ptr<ScreenEffect> MakeWipers(const Stage& stage, Random& random) {
  return std::make_unique<WetGlass>(stage, true, 150, random);
}

std::unique_ptr<ScreenEffect> MakeDrops(const Stage& stage, Random& random) {
  return std::make_unique<WetGlass>(stage, false, 200, random);
}

std::unique_ptr<ScreenEffect> MakeRain(const Stage& stage, Random& random) {
  return std::make_unique<Falling>(stage, false, random);
}

std::unique_ptr<ScreenEffect> MakeSnow(const Stage& stage, Random& random) {
  return std::make_unique<Falling>(stage, true, random);
}

}  // namespace stopngo

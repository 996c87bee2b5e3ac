// tally.cpp: events of many clips counted together, and the figures that follow from the counts.
#include "evaluate/tally.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>

namespace stopngo {
namespace {

constexpr double kHour_s = 3600;

/// E. B. Wilson's score interval (1927), which holds for few trials and for shares near 0 and 1, too.
Share Wilson(int successes, int trials) {
  constexpr double kDeviations = 1.959964;  // of the normal distribution, for 95 % between two ends
  constexpr double kSquare = kDeviations * kDeviations;
  const double n = trials;
  const double share = successes / n;
  const double centre = (share + kSquare / (2 * n)) / (1 + kSquare / n);
  const double half =
      kDeviations * std::sqrt(share * (1 - share) / n + kSquare / (4 * n * n)) / (1 + kSquare / n);
  return {share, std::max(0.0, centre - half), std::min(1.0, centre + half)};
}

/// The probability of at most count events where mean are expected.
double PoissonAtMost(int count, double mean) {
  double sum = 0;
  for (int i = 0; i <= count; ++i) sum += std::exp(i * std::log(mean) - mean - std::lgamma(i + 1.0));
  return sum;
}

/// The mean at which so few events become a matter of one in twenty.
double PoissonBound(int count) {
  double low = count;
  // Chebyshev: beyond it the probability is far below that for every count.
  double high = count + 10 * std::sqrt(count + 1.0);
  // Logarithms differ by CPU in their last bits, which decide nothing so far from the end of a double.
  for (int step = 0; step < 30; ++step) {
    const double middle = (low + high) / 2;
    (middle > 0 && PoissonAtMost(count, middle) < 0.05 ? high : low) = middle;
  }
  return high;
}

std::optional<HourlyRate> Hourly(int count, double time_s) {
  if (time_s <= 0) return std::nullopt;
  return HourlyRate{count * kHour_s / time_s, PoissonBound(count) * kHour_s / time_s};
}

}  // namespace

void Tally::Add(std::span<const Event> events, std::span<const LabelSpan> labels) {
  ++clips;
  for (const LabelSpan& span : labels) {
    (span.activity == Activity::kEgoMoving ? driving_s : standing_s) += span.end_s - span.start_s;
  }
  for (const Event& event : events) {
    switch (event.verdict) {
      case Verdict::kRight:
        ++departures;
        ++right;
        delays_s.push_back(event.delay_s);
        break;
      case Verdict::kMissed:
        ++departures;
        break;
      case Verdict::kFalse:
        ++(event.during == Activity::kEgoMoving ? false_driving : false_standing);
        break;
      case Verdict::kRepeat:
        ++repeats;
        break;
      case Verdict::kUnjudged:
        ++unjudged;
        break;
    }
  }
}

std::optional<Share> Tally::Recall() const {
  if (departures == 0) return std::nullopt;
  return Wilson(right, departures);
}

std::optional<double> Tally::Precision() const {
  const int judged = right + false_standing + false_driving;
  if (judged == 0) return std::nullopt;
  return static_cast<double>(right) / judged;
}

std::optional<HourlyRate> Tally::FalseStanding() const { return Hourly(false_standing, standing_s); }

std::optional<HourlyRate> Tally::FalseDriving() const { return Hourly(false_driving, driving_s); }

std::optional<double> Tally::Delay_s(double share) const {
  if (delays_s.empty()) return std::nullopt;
  std::vector<double> sorted = delays_s;
  std::sort(sorted.begin(), sorted.end());
  const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
  return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

bool WithinLimit(const Tally& tally, double false_per_hour) {
  const std::optional<HourlyRate> rate = tally.FalseStanding();
  return !rate || rate->value <= false_per_hour;
}

bool Better(const Tally& one, const Tally& other, double false_per_hour) {
  const auto rank = [false_per_hour](const Tally& tally) {
    const bool within = WithinLimit(tally, false_per_hour);
    constexpr double kNever = 1e9;
    return std::tuple(!within, within ? 0 : tally.false_standing, -tally.right,
                      tally.Delay_s(0.5).value_or(kNever), tally.false_standing + tally.false_driving);
  };
  return rank(one) < rank(other);
}

}  // namespace stopngo

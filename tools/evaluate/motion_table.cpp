// motion_table.cpp: what the module's histograms look like, by what happens and by kind of clip.
#include "evaluate/motion_table.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/label.h"
#include "evaluate/pair_figures.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

using Pairs = std::vector<PairFigures>;
using Values = std::vector<double>;
using Shares = std::array<double, 5>;

constexpr Shares kTenths{0.1, 0.25, 0.5, 0.75, 0.9};
constexpr Shares kQuarters{0, 0.25, 0.5, 0.75, 1};

/// Below it, shares are of a few blocks' noise.
constexpr double kSumWithShares = 50;

/// Spans of time since a departure's start.
struct Moment {
  const char* name;
  double from_s, until_s;
};
constexpr std::array kMoments{Moment{"-2 ... 0 s", -2, 0}, Moment{"0 ... 0.5 s", 0, 0.5},
                              Moment{"0.5 ... 1 s", 0.5, 1}, Moment{"1 ... 1.5 s", 1, 1.5},
                              Moment{"1.5 ... 2.5 s", 1.5, 2.5}};

/// The nearest of the sorted values to each share of them.
Spread SpreadOf(Values values, const Shares& shares) {
  Spread spread{};
  if (values.empty()) return spread;
  std::sort(values.begin(), values.end());
  for (std::size_t i = 0; i < shares.size(); ++i) {
    const double place = shares.at(i) * static_cast<double>(values.size() - 1);
    spread.at(i) = values[static_cast<std::size_t>(std::lround(place))];
  }
  return spread;
}

/// What is told of pairs, a list of values each.
struct Lists {
  Values sum, sideways, up, cells;

  void Add(const PairFigures& pair) {
    sum.push_back(pair.sum);
    cells.push_back(pair.cells);
    if (pair.sum <= kSumWithShares) return;
    sideways.push_back(pair.sideways / pair.sum);
    up.push_back(pair.up / pair.sum);
  }

  /// The middle of each list joins another's, where there is one.
  void AddMedians(const Lists& of) {
    const auto join = [](Values& to, const Values& from) {
      if (!from.empty()) to.push_back(SpreadOf(from, kTenths)[2]);
    };
    join(sum, of.sum);
    join(sideways, of.sideways);
    join(up, of.up);
    join(cells, of.cells);
  }

  [[nodiscard]] MotionRow Row(std::string what, std::string kind, const Shares& shares) const {
    MotionRow row{.what = std::move(what), .kind = std::move(kind), .count = static_cast<int>(sum.size())};
    row.sum = SpreadOf(sum, shares);
    row.sideways = SpreadOf(sideways, shares);
    row.up = SpreadOf(up, shares);
    row.cells = SpreadOf(cells, shares);
    const auto zeros = std::count(sum.begin(), sum.end(), 0.0);
    row.all_zero = sum.empty() ? 0 : static_cast<double>(zeros) / static_cast<double>(sum.size());
    return row;
  }
};

/// The pairs from a time on and before another.
Lists Between(const Pairs& pairs, double from_s, double until_s) {
  Lists lists;
  for (const PairFigures& pair : pairs) {
    if (pair.time_s >= from_s && pair.time_s < until_s) lists.Add(pair);
  }
  return lists;
}

struct Group {
  Activity activity;
  std::string kind;
  Lists lists;
};

std::string Five(const Spread& spread, double scale) {
  std::string text;
  for (const double value : spread) text += Print(text.empty() ? "%.0f" : " / %.0f", scale * value);
  return text;
}

constexpr double kPercent = 100;

}  // namespace

std::vector<MotionRow> MotionByLabel(std::span<const Clip> clips, std::span<const ClipRun> runs) {
  std::vector<Group> groups;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    for (const LabelSpan& label : runs[i].labels) {
      const auto same = [&](const Group& g) {
        return g.activity == label.activity && g.kind == clips[i].kind;
      };
      auto group = std::find_if(groups.begin(), groups.end(), same);
      if (group == groups.end()) group = groups.insert(groups.end(), {label.activity, clips[i].kind, {}});
      for (const PairFigures& pair : runs[i].motion) {
        if (pair.time_s >= label.start_s && pair.time_s < label.end_s) group->lists.Add(pair);
      }
    }
  }
  std::ranges::stable_sort(groups, {}, &Group::activity);
  std::vector<MotionRow> rows;
  rows.reserve(groups.size());
  for (const Group& group : groups) {
    rows.push_back(group.lists.Row(std::string(NameOf(group.activity)), group.kind, kTenths));
  }
  return rows;
}

std::vector<MotionRow> MotionOfDepartures(std::span<const ClipRun> runs) {
  std::vector<MotionRow> rows;
  rows.reserve(kMoments.size());
  for (const Moment& moment : kMoments) {
    Lists medians;
    for (const ClipRun& run : runs) {
      for (const LabelSpan& label : run.labels) {
        if (label.activity != Activity::kLeadDeparts) continue;
        const double start_s = label.start_s;
        medians.AddMedians(Between(run.motion, start_s + moment.from_s, start_s + moment.until_s));
      }
    }
    rows.push_back(medians.Row(moment.name, "", kQuarters));
  }
  return rows;
}

std::vector<std::string> MotionLines(std::span<const MotionRow> rows) {
  constexpr const char* kColumns = "%-14s %-12s %7s  %-34s %-24s %-24s %-24s %s";
  std::vector<std::string> lines{
      Print(kColumns, "what", "kind", "count", "sum", "sideways %", "up %", "cells", "all zero")};
  lines.reserve(1 + rows.size());
  for (const MotionRow& row : rows) {
    lines.push_back(Print(kColumns, row.what.c_str(), row.kind.c_str(), std::to_string(row.count).c_str(),
                          Five(row.sum, 1).c_str(), Five(row.sideways, kPercent).c_str(),
                          Five(row.up, kPercent).c_str(), Five(row.cells, 1).c_str(),
                          row.kind.empty() ? "" : Print("%.0f %%", kPercent * row.all_zero).c_str()));
  }
  return lines;
}

nlohmann::ordered_json MotionJson(const MotionRow& row) {
  nlohmann::ordered_json json{{"type", row.kind.empty() ? "departure" : "motion"}, {"what", row.what}};
  if (!row.kind.empty()) json["kind"] = row.kind;
  json["count"] = row.count;
  json["sum"] = row.sum;
  json["sideways"] = row.sideways;
  json["up"] = row.up;
  json["cells"] = row.cells;
  if (!row.kind.empty()) json["all_zero"] = row.all_zero;
  return json;
}

}  // namespace stopngo

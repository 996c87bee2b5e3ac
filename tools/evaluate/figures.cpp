// figures.cpp: how good a detector is, as tables, sentences and JSON.
#include "evaluate/figures.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>

#include "host/common/text.h"

namespace stopngo {
namespace {

constexpr double kMedian = 0.5;
constexpr double kLate = 0.9;

using Number = std::optional<double>;

/// Every figure once, for the forms that are read by programs.
struct Figure {
  const char* name;
  Number (*of)(const Tally&);
};
constexpr std::array<Figure, 17> kFigures{{
    {"clips", [](const Tally& t) { return Number(t.clips); }},
    {"departures", [](const Tally& t) { return Number(t.departures); }},
    {"right", [](const Tally& t) { return Number(t.right); }},
    {"false_standing", [](const Tally& t) { return Number(t.false_standing); }},
    {"false_driving", [](const Tally& t) { return Number(t.false_driving); }},
    {"standing_s", [](const Tally& t) { return Number(t.standing_s); }},
    {"driving_s", [](const Tally& t) { return Number(t.driving_s); }},
    {"recall", [](const Tally& t) { return t.Recall() ? Number(t.Recall()->value) : Number(); }},
    {"recall_low", [](const Tally& t) { return t.Recall() ? Number(t.Recall()->low) : Number(); }},
    {"recall_high", [](const Tally& t) { return t.Recall() ? Number(t.Recall()->high) : Number(); }},
    {"precision", [](const Tally& t) { return t.Precision(); }},
    {"false_per_hour_standing",
     [](const Tally& t) { return t.FalseStanding() ? Number(t.FalseStanding()->value) : Number(); }},
    {"false_per_hour_standing_bound",
     [](const Tally& t) { return t.FalseStanding() ? Number(t.FalseStanding()->bound) : Number(); }},
    {"false_per_hour_driving",
     [](const Tally& t) { return t.FalseDriving() ? Number(t.FalseDriving()->value) : Number(); }},
    {"false_per_hour_driving_bound",
     [](const Tally& t) { return t.FalseDriving() ? Number(t.FalseDriving()->bound) : Number(); }},
    {"delay_median_s", [](const Tally& t) { return t.Delay_s(kMedian); }},
    {"delay_p90_s", [](const Tally& t) { return t.Delay_s(kLate); }},
}};

std::string Decimals(Number number, int decimals) {
  return number ? Print("%.*f", decimals, *number) : std::string("-");
}

void Append(std::string& row, const std::string& cell) {
  if (!row.empty()) row += '\t';
  row += cell;
}

std::string Percent(Number share) { return share ? Print("%.1f %%", 100 * *share) : std::string("-"); }

std::string RecallText(const Tally& tally) {
  const std::optional<Share> recall = tally.Recall();
  if (!recall) return "-";
  return Print("%.1f %% (%.1f-%.1f)", 100 * recall->value, 100 * recall->low, 100 * recall->high);
}

std::string RateText(const std::optional<HourlyRate>& rate) {
  return rate ? Print("%.2f (<%.1f)", rate->value, rate->bound) : std::string("-");
}

struct Column {
  const char* name;
  std::string (*of)(const NamedTally&);
};
constexpr std::array<Column, 12> kTable{{
    {"kind", [](const NamedTally& row) { return row.name; }},
    {"clips", [](const NamedTally& row) { return std::to_string(row.tally.clips); }},
    {"departures", [](const NamedTally& row) { return std::to_string(row.tally.departures); }},
    {"recall (95 %)", [](const NamedTally& row) { return RecallText(row.tally); }},
    {"precision", [](const NamedTally& row) { return Percent(row.tally.Precision()); }},
    {"median s", [](const NamedTally& row) { return Decimals(row.tally.Delay_s(kMedian), 2); }},
    {"p90 s", [](const NamedTally& row) { return Decimals(row.tally.Delay_s(kLate), 2); }},
    {"standing h", [](const NamedTally& row) { return Decimals(row.tally.standing_s / 3600, 2); }},
    {"false/h standing", [](const NamedTally& row) { return RateText(row.tally.FalseStanding()); }},
    {"driving h", [](const NamedTally& row) { return Decimals(row.tally.driving_s / 3600, 2); }},
    {"false/h driving", [](const NamedTally& row) { return RateText(row.tally.FalseDriving()); }},
    {"repeats, unjudged",
     [](const NamedTally& row) {
       return std::to_string(row.tally.repeats) + ", " + std::to_string(row.tally.unjudged);
     }},
}};

}  // namespace

std::vector<std::string> FigureTable(std::span<const NamedTally> rows) {
  std::vector<std::string> lines(rows.size() + 1);
  for (const Column& column : kTable) {
    std::vector<std::string> cells{column.name};
    for (const NamedTally& row : rows) cells.push_back(column.of(row));
    std::size_t width = 0;
    for (const std::string& cell : cells) width = std::max(width, cell.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const std::string padding(width - cells[i].size(), ' ');
      // Names stand at the left, numbers below each other at the right.
      lines[i] += lines[i].empty() ? cells[i] + padding : "  " + padding + cells[i];
    }
  }
  return lines;
}

std::string FigureSentence(const Tally& tally) {
  return "recall " + RecallText(tally) + ", false alarms an hour " + RateText(tally.FalseStanding()) +
         " standing, " + RateText(tally.FalseDriving()) + " driving, time to alarm " +
         Decimals(tally.Delay_s(kMedian), 2) + " s median, " + Decimals(tally.Delay_s(kLate), 2) + " s p90";
}

nlohmann::ordered_json FigureJson(const Tally& tally) {
  nlohmann::ordered_json json;
  for (const Figure& figure : kFigures) {
    const Number number = figure.of(tally);
    auto& value = json[figure.name];
    if (!number) continue;
    const auto whole = static_cast<std::int64_t>(*number);
    if (static_cast<double>(whole) == *number) {
      value = whole;  // a count is not written as 16.0
    } else {
      value = *number;
    }
  }
  json["repeats"] = tally.repeats;
  json["unjudged"] = tally.unjudged;
  return json;
}

std::string FigureNames() {
  std::string names;
  for (const Figure& figure : kFigures) Append(names, figure.name);
  return names;
}

std::string FigureValues(const Tally& tally) {
  std::string values;
  for (const Figure& figure : kFigures) {
    const Number number = figure.of(tally);
    Append(values, number ? Print("%.6g", *number) : std::string("-"));
  }
  return values;
}

}  // namespace stopngo

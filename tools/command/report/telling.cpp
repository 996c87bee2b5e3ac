// telling.cpp: how the results of an input are told, among those of others.
#include "command/report/telling.h"

#include <chrono>
#include <nlohmann/json.hpp>

#include "base/results.h"
#include "base/time_of_day.h"

namespace stopngo {

void Telling::Line(const std::string& line) const { WriteResult(input.empty() ? line : input + ": " + line); }

void Telling::Object(const nlohmann::ordered_json& object) const {
  nlohmann::ordered_json line{{"type", object.at("type")}};
  if (!input.empty()) line["input"] = input;
  line.update(object);
  if (dated) line["when"] = TimeOfDay(std::chrono::system_clock::now());
  WriteResult(JsonLine(line));
}

}  // namespace stopngo

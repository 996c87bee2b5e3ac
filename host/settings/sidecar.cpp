// sidecar.cpp: what is known of a weights file, in a JSON file beside it.
#include "host/settings/sidecar.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <span>
#include <stdexcept>
#include <string_view>

#include "host/common/failure.h"
#include "host/common/file.h"
#include "host/common/sha256.h"
#include "host/settings/gate_kinds.h"
#include "host/settings/setting_table.h"
#include "host/settings/weights_file.h"

namespace stopngo {
namespace {

using Json = nlohmann::ordered_json;

// Of the file's layout: a file of another one is not read.
constexpr int kFormat = 1;

constexpr FileKind kSidecarFile{"a sidecar", std::uint64_t{1} << 20};
/// Of objects and lists in one another; what copies and writes them takes the stack. Own sidecars have four.
constexpr int kMostLevels = 32;

// The parser's message without its own name and place, of which the line is said in the house's way.
std::string ReasonOf(const Json::parse_error& fault) {
  const std::string text = fault.what();
  const std::size_t place = text.find("column ");
  const std::size_t reason = place == std::string::npos ? place : text.find(": ", place);
  return reason == std::string::npos ? text : text.substr(reason + 2);
}

Json ParsedJson(const std::string& path) {
  const std::string text = ReadFile(path, kSidecarFile);
  const auto level = [&path](int depth, Json::parse_event_t /*event*/, const Json& /*value*/) {
    if (depth > kMostLevels) throw Failure(path + ": nested more deeply than a sidecar is");
    return true;
  };
  try {
    return Json::parse(text, level);
  } catch (const Json::parse_error& fault) {
    // The offending byte counts from 1; at the end of the text it lies behind it.
    const std::string_view before =
        std::string_view(text).substr(0, std::max(fault.byte, std::size_t{1}) - 1);
    const auto line = 1 + std::ranges::count(before, '\n');
    throw Failure(path + ":" + std::to_string(line) + ": " + ReasonOf(fault));
  } catch (const Json::out_of_range& fault) {  // a number past every type
    const std::string_view told = fault.what();
    throw Failure(path + ": " + std::string(told.substr(told.find("] ") + 2)));
  }
}

/// Takes the entries out of a file's object; every fault names the file and the entry.
class EntryReader {
 public:
  explicit EntryReader(const std::string& path) : path_(path), object_(ParsedJson(path)) {
    if (!object_.is_object()) throw Failure(path + ": an object is expected");
  }

  std::uint64_t Count(const char* name) {
    const Json& value = Entry(name);
    if (!value.is_number_unsigned()) throw Fault(name, "a whole number is expected");
    return value.get<std::uint64_t>();
  }

  std::string Sha256(const char* name) {
    const Json& value = Entry(name);
    const auto is_digit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
    if (!value.is_string() || value.get_ref<const std::string&>().size() != 64 ||
        !std::ranges::all_of(value.get_ref<const std::string&>(), is_digit)) {
      throw Fault(name, "64 hexadecimal digits in quotes are expected");
    }
    return value;
  }

  /// One of some names; empty where the entry is missing.
  std::string Name(const char* name, std::span<const char* const> names) {
    if (!object_.contains(name)) return {};
    const Json& value = Entry(name);
    if (!value.is_string() || std::ranges::count(names, value.get<std::string>()) == 0) {
      throw Fault(name, "the name of a gate is expected");
    }
    return value;
  }

  Json Object(const char* name) {
    if (!object_.contains(name)) return Json::object();
    const Json& value = Entry(name);
    if (!value.is_object()) throw Fault(name, "an object is expected");
    return value;
  }

  SettingTexts Texts(const char* name) {
    SettingTexts texts;
    Settings unused;
    const Json object = Object(name);
    for (const auto& [key, value] : object.items()) {
      const Setting* const setting = FindSetting(key);
      const std::string entry = std::string(name) + ": " + key;
      if (setting == nullptr || !setting->in_sidecar) throw Fault(entry, "no setting of a network");
      if (!value.is_string() && !value.is_number()) throw Fault(entry, "a single value is expected");
      const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
      try {
        SetFromText(unused, *setting, text);
      } catch (const std::invalid_argument& reason) {
        throw Fault(entry, reason.what());
      }
      texts.emplace_back(key, text);
    }
    return texts;
  }

  /// A slip in a name has to show, or its entry would be left out in silence.
  void RefuseOthers() const {
    for (const auto& [key, value] : object_.items()) {
      if (!taken_.contains(key)) throw Fault(key, "no such entry");
    }
  }

  [[nodiscard]] Failure Fault(const std::string& name, const std::string& reason) const {
    return Failure(path_ + ": " + name + ": " + reason);
  }

 private:
  const Json& Entry(const char* name) {
    taken_.insert(name);
    const auto found = object_.find(name);
    if (found == object_.end()) throw Fault(name, "is missing");
    return *found;
  }

  std::string path_;
  Json object_;
  std::set<std::string> taken_;
};

// A number where the text is one, so that the file reads as it would by hand.
Json ValueOf(const std::string& text) {
  Json value = Json::parse(text, nullptr, false);
  return value.is_number() ? value : Json(text);
}

void CheckCounts(const std::string& weights_path, const Sidecar& sidecar, std::uint64_t inputs,
                 std::uint64_t hiddens) {
  if (sidecar.inputs == inputs && sidecar.hiddens == hiddens) return;
  const auto network = [](std::uint64_t in, std::uint64_t nodes) {
    return std::to_string(in) + " inputs and " + std::to_string(nodes) + " hidden nodes";
  };
  throw Failure(SidecarPath(weights_path) + ": is of a network of " +
                network(sidecar.inputs, sidecar.hiddens) + ", the settings have one of " +
                network(inputs, hiddens));
}

void CheckSha256(const std::string& weights_path, const Sidecar& sidecar, const Network& network) {
  const std::string found = Sha256(WeightsBytes(network));
  if (found == sidecar.sha256) return;
  throw Failure(SidecarPath(weights_path) + ": is of other weights: SHA-256 " + sidecar.sha256 + ", " +
                weights_path + " has " + found);
}

}  // namespace

std::string SidecarPath(const std::string& weights_path) { return weights_path + ".json"; }

SettingTexts SidecarSettings(const Settings& settings) {
  SettingTexts texts;
  for (const Setting& setting : SettingTable()) {
    if (setting.in_sidecar) texts.emplace_back(setting.name, TextOf(settings, setting));
  }
  return texts;
}

std::optional<Sidecar> ReadSidecar(const std::string& weights_path) {
  const std::string path = SidecarPath(weights_path);
  std::error_code error;
  if (!std::filesystem::exists(path, error) && !error) return std::nullopt;
  EntryReader reader(path);
  if (reader.Count("format") != kFormat) throw reader.Fault("format", "a newer one than this program knows");
  Sidecar sidecar;
  sidecar.inputs = reader.Count("inputs");
  sidecar.hiddens = reader.Count("hiddens");
  sidecar.sha256 = reader.Sha256("sha256");
  sidecar.settings = reader.Texts("settings");
  sidecar.training = reader.Object("training");
  sidecar.figures = reader.Object("figures");
  sidecar.gate = reader.Name("gate", kGateNames);
  reader.RefuseOthers();
  return sidecar;
}

std::string SidecarText(const Sidecar& sidecar) {
  Json settings = Json::object();
  for (const auto& [name, text] : sidecar.settings) settings[name] = ValueOf(text);
  Json object{{"format", kFormat}};
  if (!sidecar.gate.empty()) object["gate"] = sidecar.gate;
  object["inputs"] = sidecar.inputs;
  object["hiddens"] = sidecar.hiddens;
  object["sha256"] = sidecar.sha256;
  object["settings"] = settings;
  object["training"] = sidecar.training;
  object["figures"] = sidecar.figures;
  constexpr int kIndent = 2;
  // File names may hold bytes that are no UTF-8; a sidecar all the same has to be JSON.
  return object.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

void CheckSidecar(const std::string& weights_path, const Sidecar& sidecar, std::uint64_t inputs,
                  std::uint64_t hiddens) {
  CheckCounts(weights_path, sidecar, inputs, hiddens);
  CheckSha256(weights_path, sidecar, ReadWeights(weights_path, inputs, hiddens, SidecarPath(weights_path)));
}

void CheckSidecar(const std::string& weights_path, const Sidecar& sidecar, const Network& network) {
  CheckCounts(weights_path, sidecar, network.inputs, network.hiddens);
  CheckSha256(weights_path, sidecar, network);
}

std::optional<Sidecar> TakeSidecar(Settings& settings,
                                   const std::function<bool(const std::string& name)>& settled) {
  std::optional<Sidecar> sidecar = ReadSidecar(settings.weights);
  if (!sidecar) return std::nullopt;
  if (!sidecar->gate.empty()) {
    throw Failure(settings.weights + ": are weights of the " + sidecar->gate + " gate (see --" +
                  sidecar->gate + "-weights)");
  }
  SettingTexts texts = sidecar->settings;
  texts.emplace_back("features", std::to_string(sidecar->inputs / 2));
  texts.emplace_back("hiddens", std::to_string(sidecar->hiddens));
  for (const auto& [name, text] : texts) {
    if (settled(name)) continue;
    try {
      SetFromText(settings, *FindSetting(name), text);
    } catch (const std::invalid_argument& reason) {
      throw Failure(SidecarPath(settings.weights) + ": " + name + ": " + reason.what());
    }
  }
  const auto count = [](int setting) { return std::uint64_t{static_cast<std::uint32_t>(setting)}; };
  CheckSidecar(settings.weights, *sidecar, 2 * count(settings.features), count(settings.hiddens));
  return sidecar;
}

}  // namespace stopngo

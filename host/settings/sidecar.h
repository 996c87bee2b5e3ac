// sidecar.h: what is known of a weights file, in a JSON file beside it.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/settings/settings.h"
#include "host/settings/weights_file.h"

namespace stopngo {

/// Names of settings with their values as text, as an option would have them.
using SettingTexts = std::vector<std::pair<std::string, std::string>>;

struct Sidecar {
  std::uint64_t inputs = 0;
  std::uint64_t hiddens = 0;
  std::string sha256;     ///< of the weights file
  SettingTexts settings;  ///< that the weights are meant to be used with
  nlohmann::ordered_json training = nlohmann::ordered_json::object();  ///< what they were made from
  nlohmann::ordered_json figures = nlohmann::ordered_json::object();   ///< how good they are
  std::string gate{};  ///< whose weights they are; empty: the detector's own
};

/// The sidecar's name: FILE.json.
std::string SidecarPath(const std::string& weights_path);

/// The settings that belong in a sidecar, as they stand.
SettingTexts SidecarSettings(const Settings& settings);

/// None where there is no such file. Throws Failure naming the file, the place and the reason when it is
/// not what a sidecar has to be.
std::optional<Sidecar> ReadSidecar(const std::string& weights_path);

/// The sidecar as its file has it.
std::string SidecarText(const Sidecar& sidecar);

/// Throws Failure saying what differs: the counts from those in use, or the file's size or SHA-256.
void CheckSidecar(const std::string& weights_path, const Sidecar& sidecar, std::uint64_t inputs,
                  std::uint64_t hiddens);
/// The same for weights that were read already.
void CheckSidecar(const std::string& weights_path, const Sidecar& sidecar, const Network& network);

/// Gives settings, whose weights are named, what the sidecar of the weights says of all that is not settled
/// otherwise, and gives it back; nothing where there is none. Throws Failure when it does not match the weights or the
/// counts in use, and when the weights are a gate's.
std::optional<Sidecar> TakeSidecar(Settings& settings,
                                   const std::function<bool(const std::string& name)>& settled);

}  // namespace stopngo

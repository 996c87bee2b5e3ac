// default_weights.cpp: finds the weights that are used when none are named.
#include "host/settings/default_weights.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/common/places.h"

namespace stopngo {
namespace {

std::optional<std::string> Find(const char* variable, const char* file_name) {
  if (const char* const named = std::getenv(variable); named != nullptr && *named != '\0') return named;
  for (const std::filesystem::path& folder : DataFolders()) {
    std::error_code error;
    if (std::filesystem::exists(folder / file_name, error)) return (folder / file_name).string();
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> FindDefaultWeights() { return Find("STOPNGO_WEIGHTS", "default.bin"); }

std::optional<std::string> FindHistoryWeights() { return Find("STOPNGO_HISTORY_WEIGHTS", "history.bin"); }

}  // namespace stopngo

// default_weights.cpp: finds the weights that are used when none are named.
#include "host/default_weights.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/common/places.h"

namespace stopngo {
namespace {

constexpr const char* kFileName = "default.bin";

}  // namespace

std::optional<std::string> FindDefaultWeights() {
  if (const char* const named = std::getenv("STOPNGO_WEIGHTS"); named != nullptr && *named != '\0') {
    return named;
  }
  for (const std::filesystem::path& folder : DataFolders()) {
    std::error_code error;
    if (std::filesystem::exists(folder / kFileName, error)) return (folder / kFileName).string();
  }
  return std::nullopt;
}

}  // namespace stopngo

// clip_record.h: a clip's features as bytes.
#pragma once

#include <string>
#include <string_view>

#include "features/clip_features.h"

namespace stopngo {

std::string RecordOf(const ClipFeatures& features);

/// The key alone. Throws BadBytes.
std::string_view KeyOfRecord(std::string_view record);

/// Throws BadBytes.
ClipFeatures FeaturesOf(std::string_view record);

}  // namespace stopngo

// features.cpp: fuzz target: any bytes as what a file of features has of a clip. What was read is written and reads back
// as it was.
#include <optional>
#include <string>
#include <string_view>

#include "features/bytes.h"
#include "features/clip_record.h"
#include "input.h"

namespace {

std::optional<stopngo::ClipFeatures> Read(std::string_view record) {
  try {
    (void)stopngo::KeyOfRecord(record);
    return stopngo::FeaturesOf(record);
  } catch (const stopngo::BadBytes&) {
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::optional<stopngo::ClipFeatures> features = Read(fuzz::Input(data, size).Rest());
  if (!features) return 0;
  const std::string record = stopngo::RecordOf(*features);
  const std::optional<stopngo::ClipFeatures> again = Read(record);
  fuzz::Expect(again && stopngo::RecordOf(*again) == record,
               "features that were written read back otherwise");
  return 0;
}

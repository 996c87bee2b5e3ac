// feature_file.cpp: the features of some clips as a file.
#include "features/feature_file.h"

#include <utility>

#include "features/bytes.h"
#include "features/clip_record.h"
#include "host/common/failure.h"
#include "host/common/file.h"
#include "host/common/sha256.h"

namespace stopngo {
namespace {

constexpr std::string_view kMagic = "sngofeat";
constexpr std::uint32_t kFormat = 1;
constexpr std::size_t kChecksumBytes = 64;  // hexadecimal digits
constexpr FileKind kFeatureFile{"features", std::uint64_t{2} << 30};
constexpr const char* kRemedy = "; remove it, and make it anew with stopngo features";

}  // namespace

std::string FeatureFileBytes(const FeatureRecipe& recipe, std::span<const std::string> records) {
  ByteWriter out;
  out.PutRaw(kMagic);
  out.Put(kFormat);
  out.Put(recipe.scene_version);
  out.Put(recipe.scale);
  out.Put(recipe.block_size);
  out.Put(recipe.filter);
  out.Put(static_cast<std::uint8_t>(recipe.evaluation ? 1 : 0));
  out.Put(recipe.looks);
  out.Put(static_cast<std::uint32_t>(records.size()));
  for (const std::string& record : records) out.PutText(record);
  return out.Bytes() + Sha256(out.Bytes());
}

FeatureFile::FeatureFile(std::string path) : path_(std::move(path)), bytes_(ReadFile(path_, kFeatureFile)) {
  try {
    Parse();
  } catch (const BadBytes&) {
    Refuse(std::string("damaged: its parts do not fit together") + kRemedy);
  }
}

void FeatureFile::Refuse(const std::string& reason) const { throw Failure(path_ + ": " + reason); }

void FeatureFile::Parse() {
  const std::string_view bytes(bytes_);
  if (!bytes.starts_with(kMagic)) Refuse("no file of features");
  ByteReader head(bytes.substr(kMagic.size()));
  if (const auto format = head.Take<std::uint32_t>(); format != kFormat) {
    Refuse("features in format " + std::to_string(format) + ", and this program reads " +
           std::to_string(kFormat) + kRemedy);
  }
  if (bytes.size() < kMagic.size() + kChecksumBytes) throw BadBytes{};
  const std::string_view summed = bytes.substr(0, bytes.size() - kChecksumBytes);
  if (Sha256(summed) != bytes.substr(summed.size())) {
    Refuse(std::string("damaged: its SHA-256 is not that of its bytes") + kRemedy);
  }
  ByteReader in(summed.substr(kMagic.size() + sizeof kFormat));
  recipe_.scene_version = in.Take<std::uint32_t>();
  recipe_.scale = in.Take<std::int32_t>();
  recipe_.block_size = in.Take<std::int32_t>();
  recipe_.filter = in.Take<std::int32_t>();
  recipe_.evaluation = in.Take<std::uint8_t>() != 0;
  recipe_.looks = in.Take<std::int32_t>();
  const std::size_t clips = in.TakeCount(sizeof(std::uint32_t));
  records_.reserve(clips);
  for (std::size_t i = 0; i < clips; ++i) records_.push_back(in.TakeText());
  in.ExpectEnd();
}

ClipFeatures FeatureFile::Features(std::string_view record) const {
  try {
    return FeaturesOf(record);
  } catch (const BadBytes&) {
    Refuse(std::string("damaged: a clip's parts do not fit together") + kRemedy);
  }
}

std::string_view FeatureFile::Key(std::string_view record) const {
  try {
    return KeyOfRecord(record);
  } catch (const BadBytes&) {
    Refuse(std::string("damaged: a clip without a name") + kRemedy);
  }
}

}  // namespace stopngo

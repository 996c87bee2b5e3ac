// twofold.cpp: clips that come twice.
#include "clips/twofold.h"

#include <set>
#include <string>
#include <tuple>
#include <unordered_map>

#include "base/file_place.h"

namespace stopngo {
namespace {

/// The same for clips that give the same frames to the same region.
struct Identity {
  FilePlace place;  ///< of a recording; of a scene, its kind and seed
  bool scene = false;
  Region region{};
  RegionMove moved{};
  double rate = 0;

  bool operator<(const Identity& other) const {
    const auto numbers = [](const Identity& of) {
      return std::tie(of.scene, of.place, of.region.x, of.region.y, of.region.width, of.region.height,
                      of.moved.x, of.moved.y, of.rate);
    };
    return numbers(*this) < numbers(other);
  }
};

/// Manifests may name a recording a thousand times, with a region each.
class Places {
 public:
  const FilePlace& Of(const std::string& path) {
    const auto [entry, is_new] = known_.try_emplace(path);
    if (is_new) entry->second = PlaceOf(path).value_or(FilePlace{0, 0, path});
    return entry->second;
  }

 private:
  std::unordered_map<std::string, FilePlace> known_;
};

}  // namespace

const Clip* ComesTwice(const std::vector<const Clip*>& clips) {
  Places places;
  std::set<Identity> seen;
  for (const Clip* const clip : clips) {
    Identity identity{
        {}, clip->IsScene(), clip->region.value_or(Region{}), clip->moved, clip->rate.value_or(0)};
    if (const auto* const drawn = std::get_if<DrawnScene>(&clip->source)) {
      identity.place = {static_cast<dev_t>(drawn->kind), drawn->seed, {}};
    } else {
      identity.place = places.Of(std::get<std::string>(clip->source));
    }
    if (!seen.insert(std::move(identity)).second) return clip;
  }
  return nullptr;
}

}  // namespace stopngo

// remark.h: what an input turns out to be that it did not seem to be.
#pragma once

#include <bitset>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace stopngo {

struct Remark {
  std::string sentence;  ///< names the input
  bool damage = false;   ///< pictures are missing, or are not as they were recorded
};

/// Hears of each once, on the thread that opens or reads the input; may throw to end the reading.
using RemarkHearer = std::function<void(const Remark&)>;

/// Tells of one input, each kind of thing once.
class Remarks {
 public:
  /// Damage first.
  enum Kind : std::size_t {
    kPicture,
    kLost,
    kEnd,
    kJump,
    kPixels,
    kTurned,
    kInterlaced,
    kRange,
    kScaled,
    kSizes,
    kKinds
  };

  Remarks(std::string name, RemarkHearer hear) : name_(std::move(name)), hear_(std::move(hear)) {}

  void Say(Kind kind, const std::string& what) {
    if (said_.test(kind)) return;
    said_.set(kind);
    if (hear_) hear_({name_ + ": " + what, kind <= kEnd});
  }

 private:
  std::string name_;
  RemarkHearer hear_;
  std::bitset<kKinds> said_;
};

}  // namespace stopngo

// clip_keys.h: texts that are the same for clips that give the same frames to the same region, wherever they lie.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "clips/clip.h"

namespace stopngo {

/// Takes the SHA-256 of each recording once, with those of what it lists. Any number of threads may ask.
class ClipKeys {
 public:
  /// rate: frames a second handed over where the clip asks for none. Throws Failure for a recording that is no file.
  std::string Of(const Clip& clip, double rate);

 private:
  std::string Recording(const std::string& path);

  std::mutex asking_;
  std::map<std::string, std::string> recordings_;  ///< SHA-256 by path
};

}  // namespace stopngo

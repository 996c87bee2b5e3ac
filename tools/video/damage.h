// damage.h: what is done about a recording that is damaged: refused, or taken as it is.
#pragma once

#include <string>

#include "video/remark.h"

namespace stopngo {

/// Warns of all that is said of an input but for its damage. That makes the reading fail at once, or is kept until
/// the work is done, or, where damage is allowed, is a warning like the others.
class DamageRule {
 public:
  enum class Kind { kAtOnce, kAtEnd, kAllowed };
  /// otherwise: what is done unless damage is allowed.
  DamageRule(Kind otherwise, bool allowed) : kind_(allowed ? Kind::kAllowed : otherwise) {}

  void operator()(const Remark& remark);
  [[nodiscard]] const std::string& Kept() const { return kept_; }
  /// Throws Failure with the damage that was kept.
  void RefuseKept() const;

 private:
  Kind kind_;
  std::string kept_;
};

}  // namespace stopngo

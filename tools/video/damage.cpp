// damage.cpp: what is done about a recording that is damaged: refused, or taken as it is.
#include "video/damage.h"

#include "base/warning.h"
#include "host/common/failure.h"

namespace stopngo {
namespace {

Failure Refusal(const std::string& damage) { return Failure(damage + " (see --allow-damaged)"); }

}  // namespace

void DamageRule::operator()(const Remark& remark) {
  if (!remark.damage || kind_ == Kind::kAllowed) {
    Warn(remark.sentence);
    return;
  }
  if (kind_ == Kind::kAtOnce) throw Refusal(remark.sentence);
  if (!kept_.empty()) kept_ += "; ";
  kept_ += remark.sentence;
}

void DamageRule::RefuseKept() const {
  if (!kept_.empty()) throw Refusal(kept_);
}

}  // namespace stopngo

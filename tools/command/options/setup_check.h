// setup_check.h: what check says of a set-up, heeded by the commands that work with it.
#pragma once

#include "host/check.h"
#include "host/module/module.h"

namespace stopngo {

/// Before the work begins: says what may not be wanted, each once, and throws Failure with the first finding that
/// cannot work.
void HeedFindings(const Module& module, const Setup& setup);

}  // namespace stopngo

// setup_check.cpp: what check says of a set-up, heeded by the commands that work with it.
#include "command/options/setup_check.h"

#include <string>

#include "base/warning.h"
#include "host/common/failure.h"
#include "host/detector.h"

namespace stopngo {

void HeedFindings(const Module& module, const Setup& setup) {
  // What a detector refuses to be made of, a file that is no network among it, has sentences of its own.
  (void)Detector(module, setup.settings, FramesOf(setup));
  for (const Finding& finding : CheckSetup(module, setup)) {
    const std::string sentence = SentenceOf(finding) + " (see --" + finding.setting + ")";
    if (finding.severity == Severity::kError) throw Failure(sentence, ExitCode::kUsage);
    Warn(sentence);
  }
}

}  // namespace stopngo

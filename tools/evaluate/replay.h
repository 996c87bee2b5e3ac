// replay.h: detectors over what is kept of a clip, as if they were given its pictures.
#pragma once

#include "clips/clip.h"
#include "evaluate/evaluation.h"
#include "host/module/module.h"

namespace stopngo {

/// The module itself decides, frame by frame, on the histograms that it made before; gates are shown the same as
/// with pictures. options.features is there. Throws Failure.
ClipRun ReplayClip(const Module& module, const RunOptions& options, const Clip& clip);

}  // namespace stopngo

// report.h: how a training went, as a picture.
#pragma once

#include <ostream>
#include <span>

#include "train/trainer.h"

namespace stopngo {

/// Both losses over the iterations, a colour a starting point. As Canvas::WritePng.
void WriteLearningCurves(std::ostream& out, std::span<const Training> trainings);

}  // namespace stopngo

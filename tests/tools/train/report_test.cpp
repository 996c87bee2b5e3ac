// report_test.cpp: pictures of how a training went.
#include "train/report.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "support/forgotten_fonts.h"
#include "train/trainer.h"

namespace stopngo::test {
namespace {

// Nothing to be seen may not mean that nothing is drawn, or for ever.
TEST(LearningCurves, AreDrawnWhateverTheLossIs) {
  for (const double loss : {0.0, 1e-300, 1.0, 1e30}) {
    Training training;
    for (int iteration = 1; iteration <= 3; iteration++) training.curve.push_back({iteration, loss, loss});
    std::ostringstream picture;
    WriteLearningCurves(picture, std::vector{training, Training{}});
    EXPECT_EQ(picture.str().substr(1, 3), "PNG") << loss;
  }
}

}  // namespace
}  // namespace stopngo::test

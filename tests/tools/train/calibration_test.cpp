// calibration_test.cpp: where scores are placed, for networks that say the same to every frame.
#include "train/calibration.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "classify.h"
#include "clips/clip.h"
#include "host/settings/settings.h"
#include "host/settings/weights_file.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

/// Three seconds of grey at 25 frames a second.
std::string GreyClip() {
  std::string video = "YUV4MPEG2 W800 H480 F25:1 Ip A1:1 Cmono\n";
  for (int i = 0; i < 75; i++) {
    video += "FRAME\n" + std::string(std::size_t{kPictureWidth} * kPictureHeight, '\x60');
  }
  return video;
}

/// The score is the logistic function of the bias, but for a trace of one input, without which it were no network.
Network Constant(const Settings& settings, float bias) {
  Network network;
  network.inputs = 2 * static_cast<std::size_t>(settings.features);
  network.hiddens = static_cast<std::size_t>(settings.hiddens);
  network.numbers.resize(NetworkLength(network.inputs, network.hiddens));
  network.numbers.front() = 1e-15F;
  network.numbers[(network.inputs + 1) * network.hiddens] = 1e-15F;
  network.numbers.back() = bias;
  return network;
}

class CalibrationTest : public testing::Test {
 protected:
  CalibrationTest() {
    settings_.rate = 0;
    clip_.name = clip_.kind = "grey";
    clip_.source = folder_.File("grey.y4m", GreyClip());
  }
  Calibration Calibrated(float bias, const std::vector<LabelSpan>& labels, double false_per_hour) {
    clip_.labels = labels;
    return Calibrate(Constant(settings_, bias), std::span(&clip_, 1), settings_, false_per_hour, 2);
  }
  TemporaryFolder folder_;
  Settings settings_;
  Clip clip_;
};

// A score of 0.4 is at -0.405 in log odds, and shifts come in quarters.
TEST_F(CalibrationTest, RaisesScoresUntilDeparturesAreCaught) {
  const std::vector<LabelSpan> departs{{0, 0.1, Activity::kStill}, {0.1, 3, Activity::kLeadDeparts}};
  // Where scores are high enough they stay: lower ones would catch no more.
  for (const auto& [bias, shift] : {std::pair(-3.0F, 2.75), std::pair(2.5F, 0.0)}) {
    const Calibration found = Calibrated(bias, departs, 1);
    EXPECT_EQ(found.shift, shift) << bias;
    EXPECT_EQ(found.tally.right, 1) << bias;
    EXPECT_EQ(found.tally.false_standing, 0) << bias;
  }
}

TEST_F(CalibrationTest, LowersScoresWhereOnlyFalseAlarmsComeOfThem) {
  const std::vector<LabelSpan> still{{0, 3, Activity::kStill}};
  const Calibration found = Calibrated(1, still, 1);
  EXPECT_EQ(found.shift, -1.5) << "the first score below the threshold";
  EXPECT_EQ(found.tally.false_standing, 0);
  EXPECT_EQ(found.tally.clips, 1);
}

// One alarm of three seconds is 1,200 an hour: what lies within the limit decides.
TEST_F(CalibrationTest, AllowsAsManyFalseAlarmsAsAreWanted) {
  const std::vector<LabelSpan> late{{0, 1, Activity::kStill}, {1, 3, Activity::kLeadDeparts}};
  settings_.time_cooling = {10, false};
  EXPECT_EQ(Calibrated(-1, late, 3000).tally.right, 1);
  EXPECT_EQ(Calibrated(-1, late, 1).tally.right, 0);
}

}  // namespace
}  // namespace stopngo::test

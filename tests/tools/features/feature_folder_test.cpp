// feature_folder_test.cpp: what is kept of clips comes back as it was, or not at all.
#include "features/feature_folder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "features/bytes.h"
#include "features/clip_record.h"
#include "features/feature_plan.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

View SomeView(std::size_t frames, bool decides) {
  std::mt19937 random(7);
  View view;
  view.columns = 5;
  view.rows = 4;
  for (std::size_t i = 0; i + 1 < frames; ++i) {
    for (DATA_32 entry = 0; entry < kChunkCapacity; ++entry) {
      const bool moves = random() % 4 == 0;
      view.histograms.push_back(static_cast<std::int8_t>(moves ? static_cast<int>(random() % 256) - 128 : 0));
    }
    if (decides) view.signals.push_back({0.1 * static_cast<double>(i), -1.0 / 3});
  }
  for (std::size_t i = 0; decides && i < frames; ++i)
    view.pixels.push_back({1.0 / static_cast<double>(i + 3), i == 2});
  return view;
}

ClipFeatures SomeFeatures(const std::string& key) {
  ClipFeatures features;
  features.key = key;
  features.labels = {{0, 2.5, Activity::kStill}, {2.5, 1.0 / 3 + 3, Activity::kEgoMoving}};
  features.looks_seed = 0x123456789abcdef0;
  features.evaluation =
      Pass{6, {0, 0.16, 0.32, 0.48}, {SomeView(4, true), SomeView(4, true), SomeView(4, true)}};
  features.looks = {Pass{6, {0}, {SomeView(1, false)}},
                    Pass{7.25, {0, 0.1}, {SomeView(2, false), SomeView(2, false)}}};
  return features;
}

TEST(ClipRecord, ComesBackAsItWasAndNotWithAByteLess) {
  const std::string record = RecordOf(SomeFeatures("key"));
  const ClipFeatures back = FeaturesOf(record);
  EXPECT_EQ(RecordOf(back), record);
  EXPECT_EQ(KeyOfRecord(record), "key");
  ASSERT_TRUE(back.evaluation);
  EXPECT_EQ(back.evaluation->times_s, SomeFeatures("").evaluation->times_s);
  EXPECT_EQ(back.evaluation->views[2].histograms, SomeView(4, true).histograms);
  EXPECT_EQ(back.evaluation->views[2].pixels[2].luma, 0.2);
  EXPECT_TRUE(back.evaluation->views[2].pixels[2].repeated);
  EXPECT_EQ(back.evaluation->views[0].signals[1].flow, -1.0 / 3);
  EXPECT_EQ(back.looks[1].fps, 7.25);
  EXPECT_EQ(back.labels[1].end_s, 1.0 / 3 + 3);
  for (std::size_t length = 0; length < record.size(); ++length) {
    EXPECT_THROW(FeaturesOf(std::string_view(record).substr(0, length)), BadBytes) << length;
  }
  EXPECT_THROW(FeaturesOf(record + '\0'), BadBytes);
}

// The layout does not depend on the machine that writes it.
TEST(ClipRecord, HasItsLowestBytesFirst) {
  ByteWriter out;
  out.Put(std::uint32_t{0x01020304});
  out.Put(std::int32_t{-2});
  out.Put(1.0);
  out.PutText("ab");
  EXPECT_EQ(out.Bytes(), std::string("\4\3\2\1\xfe\xff\xff\xff\0\0\0\0\0\0\xf0\x3f\2\0\0\0ab", 22));
}

class FeatureFolderTest : public testing::Test {
 protected:
  [[nodiscard]] std::string Find(const FeatureRecipe& recipe, const std::string& spoilt = "") const {
    std::string bytes =
        FeatureFileBytes(recipe, std::vector<std::string>{RecordOf(SomeFeatures("scene rate=6"))});
    if (!spoilt.empty()) bytes.replace(0, spoilt.size(), spoilt);
    static_cast<void>(folder_.File("a.features", bytes));
    const Clip clip{.name = "scene", .kind = "k", .source = DrawnScene{}};
    return FailureOf(
        [&] { static_cast<void>(FeatureFolder(folder_ / "").Find(clip, Settings(), {.evaluation = true})); });
  }
  const TemporaryFolder folder_;
  const FeatureRecipe recipe_{Settings(), {.evaluation = true, .looks = 3}};
};

TEST_F(FeatureFolderTest, GivesNothingOfOtherScenesOrFormats) {
  EXPECT_EQ(Find(recipe_), "no failure");
  FeatureRecipe old = recipe_;
  old.scene_version = kSceneVersion - 1;
  ExpectWords(Find(old), {"a.features", "version " + std::to_string(kSceneVersion), "remove"});
  FeatureRecipe lone = recipe_;
  lone.evaluation = false;
  ExpectWords(Find(lone), {"--only-looks"});
  ExpectWords(Find(recipe_, "features"), {"a.features", "no file of features"});
  ExpectWords(Find(recipe_, std::string("sngofeat\2\0\0\0", 12)), {"format 2", "reads 1"});
  ExpectWords(Find(recipe_, std::string("sngofeat\1\0\0\0\7", 13)), {"damaged"});
}

TEST(PlanFeatures, PartsHaveEveryFileOnceAndAreAlike) {
  std::vector<Clip> clips;
  for (std::uint64_t seed = 1; seed <= 100; ++seed)
    clips.push_back({.source = DrawnScene{SceneKind::kMixed, seed}});
  for (int i = 1; i <= 30; ++i) {
    clips.push_back({.source = "clip.mp4", .labels = {{0, 40.0 * i, Activity::kStill}}});
  }
  const std::vector<ManifestShare> manifests{{"a/one.tsv", 90}, {"two.tsv", 40}};
  const std::vector<PlannedFile> all = PlanFeatures("kept", manifests, clips);
  std::size_t count = 0;
  double cost = 0;
  for (const PlannedFile& file : all) {
    EXPECT_EQ(file.clips.data(), clips.data() + count) << "clips in their order";
    count += file.clips.size();
    cost += file.cost;
  }
  EXPECT_EQ(count, clips.size());
  EXPECT_EQ(all.front().path, "kept/one.tsv.00001.features");
  constexpr int kParts = 5;
  std::size_t files = 0;
  for (int part = 1; part <= kParts; ++part) {
    double own = 0;
    for (const PlannedFile& file : PartOf(all, part, kParts)) own += file.cost;
    files += PartOf(all, part, kParts).size();
    EXPECT_NEAR(own, cost / kParts, 0.1 * cost / kParts) << part;
  }
  EXPECT_EQ(files, all.size());
  const std::vector<ManifestShare> alike{{"a/one.tsv", 90}, {"b/one.tsv", 40}};
  ExpectWords(FailureOf([&] { PlanFeatures("kept", alike, clips); }), {"b/one.tsv"});
}

}  // namespace
}  // namespace stopngo::test

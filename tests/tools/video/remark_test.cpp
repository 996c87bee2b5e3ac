// remark_test.cpp: what is said of inputs: damage, early ends, pictures that are not what they seem; or nothing.
#include "video/remark.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "support/failure_text.h"
#include "support/temporary_folder.h"
#include "video/damage.h"
#include "video/frame_source.h"
#include "waves.h"

namespace stopngo::test {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 192;
constexpr int kPictures = 100;

/// What is heard of an input, and how many frames it gives.
struct Heard {
  std::size_t frames = 0;
  std::vector<Remark> remarks;
};

Heard Hear(SourceOptions options) {
  Heard heard;
  options.hear = [&heard](const Remark& remark) { heard.remarks.push_back(remark); };
  heard.frames = FramesOf(options).size();
  return heard;
}

SourceOptions Input(const std::string& path) {
  SourceOptions options;
  options.input = path;
  options.width = kWidth;
  options.height = kHeight;
  return options;
}

void ExpectOne(const Heard& heard, bool damage, const std::vector<std::string>& words) {
  ASSERT_EQ(heard.remarks.size(), 1U) << words.front();
  EXPECT_EQ(heard.remarks[0].damage, damage);
  ExpectWords(heard.remarks[0].sentence, words);
}

class RemarkTest : public testing::Test {
 protected:
  [[nodiscard]] std::string Whole(const std::string& name) const {
    Record(folder_ / name, kWidth, kHeight, 25, kPictures);
    return folder_ / name;
  }
  /// The first part of a file, under another name.
  [[nodiscard]] std::string Cut(const std::string& name, double part) const {
    const std::string bytes = ReadFile(Whole(name));
    return folder_.File("cut-" + name, bytes.substr(0, static_cast<std::size_t>(part * bytes.size())));
  }
  TemporaryFolder folder_;
};

TEST_F(RemarkTest, PlainInputsAreHeardOnceAndToTheirEnd) {
  EXPECT_TRUE(Hear(Input(Whole("v.y4m"))).remarks.empty());
  const Heard cut = Hear(Input(Cut("v.y4m", 0.505)));
  ExpectOne(cut, true, {"cut-v.y4m", "2.00 s", "frame 50 is cut short"});
  EXPECT_EQ(cut.frames, 50U);
  const std::string video = ReadFile(folder_ / "v.y4m");
  const std::size_t frame = 6 + kWidth * kHeight;  // "FRAME\n"
  const std::size_t header = video.size() - kPictures * frame;
  std::string lost = video;
  lost.replace(header + 3 * frame, 5, "fRAME");
  ExpectOne(Hear(Input(folder_.File("lost.y4m", lost))), true, {"lost.y4m", "0.12 s", "no frame header"});
  ExpectOne(Hear(Input(folder_.File("header.y4m", video.substr(0, header + 2 * frame + 3)))), true,
            {"0.08 s", "within a header"});
  std::string pixels = video;
  pixels.replace(pixels.find("A1:1"), 4, "A16:15");
  ExpectOne(Hear(Input(folder_.File("pixels.y4m", pixels))), false, {"16:15"});
  std::string fields = video;
  fields.replace(fields.find(" Ip"), 3, " It");
  ExpectOne(Hear(Input(folder_.File("fields.y4m", fields))), false, {"interlaced"});
  std::string range = video;
  range.insert(range.find('\n'), " XCOLORRANGE=FULL");
  ExpectOne(Hear(Input(folder_.File("range.y4m", range))), false, {"full range"});
}

TEST_F(RemarkTest, DamageIsRefusedAtOnceOrInTheEndOrAllowed) {
  const Remark damage{"v.avi: the picture at 3.00 s is damaged", true};
  DamageRule at_end(DamageRule::Kind::kAtEnd, false);
  EXPECT_NO_THROW(at_end.RefuseKept());
  at_end(damage);
  at_end({"v.avi: ends near 4.00 s", true});
  ExpectWords(FailureOf([&] { at_end.RefuseKept(); }),
              {damage.sentence, "; v.avi: ends near", "--allow-damaged"});
  DamageRule at_once(DamageRule::Kind::kAtOnce, false);
  ExpectWords(FailureOf([&] { at_once(damage); }), {damage.sentence, "--allow-damaged"});
  testing::internal::CaptureStderr();
  DamageRule allowed(DamageRule::Kind::kAtOnce, true);
  allowed(damage);
  allowed(damage);
  allowed.RefuseKept();
  at_once({"v.avi: its pixels\n are 4:3", false});
  EXPECT_EQ(
      testing::internal::GetCapturedStderr(),
      "stopngo: warning: " + damage.sentence + "\nstopngo: warning: v.avi: its pixels\\u000a are 4:3\n");
}

#if STOPNGO_WITH_FFMPEG
TEST_F(RemarkTest, NothingIsSaidOfWholeRecordings) {
  for (const char* const name : {"v.mp4", "v.mkv", "v.avi", "v.ts", "v.webm", "v.mov", "v.flv"}) {
    const Heard heard = Hear(Input(Whole(name)));
    EXPECT_EQ(heard.frames, kPictures) << name;
    EXPECT_TRUE(heard.remarks.empty()) << heard.remarks[0].sentence;
  }
  // As a dashboard camera's files are joined: each piece starts to count anew.
  const std::string piece = ReadFile(folder_ / "v.ts");
  const Heard joined = Hear(Input(folder_.File("joined.ts", piece + piece + piece)));
  EXPECT_EQ(joined.frames, 3 * kPictures);
  EXPECT_TRUE(joined.remarks.empty()) << joined.remarks[0].sentence;
  // Cut out of a stream: what comes before the first whole picture cannot be decoded.
  constexpr std::size_t kPacket = 188;
  const std::string rest = piece.substr(piece.size() / kPacket * 2 / 3 * kPacket);
  const Heard cut_out = Hear(Input(folder_.File("rest.ts", rest + piece)));
  EXPECT_EQ(cut_out.frames, kPictures);
  EXPECT_TRUE(cut_out.remarks.empty()) << cut_out.remarks[0].sentence;
}

TEST_F(RemarkTest, RecordingsThatEndEarlyAreSaidToWithTheirTime) {
  for (const char* const name : {"v.mkv", "v.webm", "v.avi", "v.flv"}) {
    for (const double part : {0.5, 0.67}) {
      const Heard heard = Hear(Input(Cut(name, part)));
      EXPECT_GT(heard.frames, 0U) << name;
      EXPECT_LT(heard.frames, kPictures) << name;
      ASSERT_FALSE(heard.remarks.empty()) << name << ' ' << part;
      EXPECT_TRUE(heard.remarks[0].damage);
      ExpectWords(heard.remarks[0].sentence, {name, "near ", " s"});
    }
  }
  ExpectOne(Hear(Input(Cut("v.mkv", 0.67))), true, {"announces a length of 4.00 s"});
  // At the end of a picture, so that its length alone tells.
  const std::string avi = ReadFile(folder_ / "v.avi");
  const std::size_t boundary = avi.find("00dc", avi.size() / 2);
  ExpectOne(Hear(Input(folder_.File("even.avi", avi.substr(0, boundary)))), true,
            {"announces a length of 4.00 s"});
}

// What a Matroska file lacks is told by its size; time that jumps in a whole one is how it was recorded.
TEST_F(RemarkTest, RecordingsThatLackAPartInTheMiddleAreSaidToWithItsTime) {
  // A cluster lasts five seconds, and every second one starts with a picture that needs no other.
  constexpr int kLong = 600;
  Record(folder_ / "v.mkv", kWidth, kHeight, 25, kLong);
  EXPECT_TRUE(Hear(Input(folder_ / "v.mkv")).remarks.empty());
  const std::string whole = ReadFile(folder_ / "v.mkv");
  const std::string cluster = "\x1f\x43\xb6\x75";
  std::vector<std::size_t> clusters;
  for (std::size_t at = whole.find(cluster); at != std::string::npos; at = whole.find(cluster, at + 1)) {
    clusters.push_back(at);
  }
  ASSERT_EQ(clusters.size(), 5U);
  const std::size_t count = clusters[4] - clusters[2];
  std::string lacks = whole;
  lacks.erase(clusters[2], count);
  const Heard lost = Hear(Input(folder_.File("lacks.mkv", lacks)));
  ExpectOne(lost, true,
            {"lacks.mkv", "its time jumps from ", std::to_string(count) + " of its bytes are missing"});
  EXPECT_EQ(lost.frames, 350U);
  // The clusters' marks alone: the library looks for the next one and goes on without a word.
  std::string unread = whole;
  unread[clusters[2]] = '\x7f';
  unread[clusters[3]] = '\x7f';
  const Heard passed_over = Hear(Input(folder_.File("unread.mkv", unread)));
  ExpectOne(passed_over, true, {"unread.mkv", "its time jumps from ", "bytes cannot be read"});
}

// Packets of a transport stream are numbered. Between two that a recorder wrote none is missing, whatever their times.
TEST_F(RemarkTest, LostPacketsAreDamageAndPausesAreNot) {
  constexpr std::size_t kPacket = 188;
  const std::string whole = ReadFile(Whole("v.ts"));
  const std::size_t packets = whole.size() / kPacket;
  for (const std::size_t count : {packets / 3 | 1U, packets / 5 | 1U}) {
    std::string lost = whole;
    lost.erase(packets / 4 * kPacket, count * kPacket);
    const Heard heard = Hear(Input(folder_.File("lost.ts", lost)));
    ASSERT_FALSE(heard.remarks.empty()) << count;
    EXPECT_TRUE(heard.remarks[0].damage) << heard.remarks[0].sentence;
    ExpectWords(heard.remarks[0].sentence, {"lost.ts", "near ", " s"});
  }
  SourceOptions drawn = Input("");
  drawn.format = "lavfi";
  const std::string pictures = "testsrc=size=320x192:rate=25:duration=6,format=gray";
  drawn.input = pictures + ",select='lt(t,2)+gt(t,4)'";
  ExpectOne(Hear(drawn), false, {"its time jumps from 1.96 s to 4.04 s", "nothing tells"});
  // Pictures that come as something moves; and a camera that leaves one out now and then.
  for (const char* const chosen : {"lt(mod(n,50),3)+eq(mod(n,7),0)", "gt(mod(n,9),0)", "eq(mod(n,24),0)"}) {
    drawn.input = pictures + ",select='" + chosen + "'";
    const Heard heard = Hear(drawn);
    EXPECT_TRUE(heard.remarks.empty()) << chosen << ": " << heard.remarks[0].sentence;
  }
}

TEST_F(RemarkTest, DamagedPicturesAreSaidToWithTheirTime) {
  for (const char* const name : {"v.mp4", "v.mkv", "v.avi", "v.ts"}) {
    const std::string whole = ReadFile(Whole(name));
    std::size_t said = 0;
    // Encoders do not give the same bytes twice, and a decoder may make sense of what is damaged: not in each place.
    for (const std::size_t place :
         {whole.size() / 3, whole.size() / 2, whole.size() * 3 / 5, whole.size() * 2 / 3}) {
      std::string bytes = whole;
      for (std::size_t i = 0; i < 400; i += 40) bytes[place + i] ^= '\x55';
      const Heard heard = Hear(Input(folder_.File(std::string("bad-").append(name), bytes)));
      EXPECT_GT(heard.frames, kPictures / 3) << name;
      for (const Remark& remark : heard.remarks) {
        // Of a time stamp that was hit nothing tells that it is wrong.
        const bool jumps = remark.sentence.find("its time jumps") != std::string::npos;
        EXPECT_TRUE(remark.damage || jumps) << remark.sentence;
        said += remark.damage ? 1 : 0;
      }
    }
    EXPECT_GT(said, 0U) << name;
  }
}

// Whatever the pace of the decoder's threads.
TEST_F(RemarkTest, DamageThatWasSaidIsSaidEachTime) {
  const std::string whole = ReadFile(Whole("v.mkv"));
  std::string bytes = whole;
  for (std::size_t i = 0; i < 4000; i += 4) bytes[whole.size() / 2 + i] ^= '\x55';
  const SourceOptions damaged = Input(folder_.File("bad.mkv", bytes));
  for (int turn = 0; turn < 20; ++turn) {
    const Heard heard = Hear(damaged);
    const auto is_damage = [](const Remark& remark) { return remark.damage; };
    EXPECT_TRUE(std::any_of(heard.remarks.begin(), heard.remarks.end(), is_damage)) << turn;
  }
}

TEST_F(RemarkTest, PicturesThatAreNotWhatTheySeemAreSaidTo) {
  SourceOptions drawn = Input("");
  drawn.format = "lavfi";
  const std::string picture = "testsrc=size=320x192:duration=0.2,format=yuv420p";
  drawn.input = picture + ",setsar=16/15";
  ExpectOne(Hear(drawn), false, {"16:15"});
  drawn.input = picture + ",setsar=1";
  EXPECT_TRUE(Hear(drawn).remarks.empty());
  const std::string frame = "FRAME\n" + std::string(kWidth * kHeight * 3 / 2, '\x60');
  SourceOptions tagged = Input("");
  tagged.format = "yuv4mpegpipe";
  for (const auto& [tag, word] :
       {std::pair{"It", "interlaced"}, std::pair{"Ip XCOLORRANGE=FULL", "full range"}}) {
    std::string video = "YUV4MPEG2 W320 H192 F25:1 A1:1 ";
    tagged.input = folder_.File("v", video.append(tag).append("\n").append(frame).append(frame));
    ExpectOne(Hear(tagged), false, {word});
  }
  tagged.input = folder_.File("v", "YUV4MPEG2 W320 H192 F25:1 Ip A1:1 XCOLORRANGE=LIMITED\n" + frame + frame);
  EXPECT_TRUE(Hear(tagged).remarks.empty());
  drawn.input = picture;
  drawn.height = 200;
  ExpectOne(Hear(drawn), false, {"320 x 192 are stretched to 320 x 200"});
  drawn.width = 640;
  drawn.height = 384;
  ExpectOne(Hear(drawn), false, {"320 x 192 are scaled to 640 x 384"});
}

TEST_F(RemarkTest, AChangeOfSizeIsSaidWithItsTime) {
  Record(folder_ / "small.ts", 160, 96, 25, kPictures);
  const std::string large = ReadFile(Whole("v.ts"));
  const std::string joined = folder_.File("sizes.ts", large + ReadFile(folder_ / "small.ts") + large);
  ExpectOne(Hear(Input(joined)), false, {"320 x 192 to 160 x 96 at 4.00 s"});
}
#endif

}  // namespace
}  // namespace stopngo::test

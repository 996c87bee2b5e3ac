// plain_reader_test.cpp: Y4M and raw luma: chroma that is passed over, damaged headers, ends.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "support/damage.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"
#include "video/open_source.h"
#include "waves.h"

namespace stopngo::test {
namespace {

SourceOptions Input(const std::string& path, int width, int height) {
  SourceOptions options;
  options.input = path;
  options.width = width;
  options.height = height;
  return options;
}

TEST(PlainReader, ChromaOfEveryLayoutIsPassedOver) {
  const TemporaryFolder folder;
  // 5 x 3 pixels: chroma is rounded up.
  for (const auto& [layout, chroma] :
       {std::pair{" Cmono", 0}, std::pair{"", 12}, std::pair{" C420jpeg", 12},
        std::pair{" C420paldv XCOLORRANGE=FULL", 12}, std::pair{" C420mpeg2", 12}, std::pair{" C422", 18},
        std::pair{" C444", 30}}) {
    std::string video = "YUV4MPEG2 W5 H3 F30:2 Ip" + std::string(layout) + "\n";
    for (const char level : {'\x20', '\x30', '\x40'}) {
      video += "FRAME Ip\n" + std::string(15, level) + std::string(static_cast<std::size_t>(chroma), '\x55');
    }
    const SourceOptions options = Input(folder.File("v.y4m", video), 5, 3);
    const std::vector<LumaFrame> frames = FramesOf(options);
    ASSERT_EQ(frames.size(), 3U) << layout;
    EXPECT_EQ(frames[2].pixels, Luma(15, 0x40)) << layout;
    EXPECT_DOUBLE_EQ(frames[2].time_s, 2 / 15.0) << layout;
  }
}

TEST(PlainReader, FaultsAreToldByFile) {
  const TemporaryFolder folder;
  const std::string head = "YUV4MPEG2 W4 H2 Cmono";
  for (const auto& [video, word] : {std::pair<std::string, const char*>{head, "within a header"},
                                    {head + std::string(5000, ' ') + "\n", "header of more than"},
                                    {"YUV4MPEG2 W4\n", "without a usable size"},
                                    {"YUV4MPEG2 W4 H99999\n", "without a usable size"},
                                    {"YUV4MPEG2 W4 H2x\n", "damaged Y4M header"},
                                    {"YUV4MPEG2 W4 H2 C420p10\n", "420p10"},
                                    {head + "\nframe\n", "frame 0 has no frame header"},
                                    {head + "\nFRAME\n1234567", "frame 0 is cut short"}}) {
    const std::string path = folder.File("v.y4m", video);
    ExpectWords(FailureOf([&] { FramesOf(Input(path, 4, 2)); }), {path, word});
  }
  // A rate that makes no sense is taken for an unknown one.
  const std::string odd = folder.File("v.y4m", "YUV4MPEG2 W4 H2 F0:0 Cmono\n");
  EXPECT_EQ(OpenSource(Input(odd, 4, 2))->Info().fps, 25);
  SourceOptions raw = Input(folder.File("v.raw", "1234567"), 4, 2);
  raw.raw_width = 4;
  raw.raw_height = 2;
  ExpectWords(FailureOf([&] { FramesOf(raw); }), {"v.raw", "frame 0 is cut short"});
  raw.raw_width = 16385;
  ExpectWords(FailureOf([&] { OpenSource(raw); }), {"--raw", "16384"});
  raw = Input(folder / "gone.raw", 4, 2);
  raw.raw_width = raw.raw_height = 4;
  ExpectWords(FailureOf([&] { OpenSource(raw); }), {"gone.raw", "No such file"});
}

TEST(PlainReader, DamagedHeadersAndFramesAreReadOrRefused) {
  const TemporaryFolder folder;
  const std::string intact = "YUV4MPEG2 W16 H12 F25:1 Ip A1:1 C420jpeg XCOMMENT\nFRAME\n" +
                             std::string(std::size_t{16} * 12 * 3 / 2, '\x50') + "FRAME Ip\n" +
                             std::string(std::size_t{16} * 12 * 3 / 2, '\x60');
  // Damages to planes alone show nothing: the planes are short, so that most damages hit the lines of text.
  ReadDamaged(folder, "v.y4m", intact, 3000, [](const std::string& path) {
    const auto source = OpenSource(Input(path, 16, 12));
    for (LumaFrame frame; source->Next(frame);) ASSERT_EQ(frame.pixels.size(), 16U * 12U);
  });
}

}  // namespace
}  // namespace stopngo::test

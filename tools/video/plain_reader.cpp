// plain_reader.cpp: reads Y4M and raw luma, from files and standard input, without any library.
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>

#include "host/common/failure.h"
#include "host/common/system_error.h"
#include "host/common/text.h"
#include "video/reader.h"
#include "video/remark.h"

namespace stopngo {
namespace {

constexpr std::string_view kMagic = "YUV4MPEG2";
constexpr std::string_view kFrameMagic = "FRAME";
#if defined(STOPNGO_WITH_FFMPEG)
constexpr const char* kNotY4m = "not Y4M (see --raw for raw luma, --format for anything else)";
#else
constexpr const char* kNotY4m = "not Y4M (see --raw for raw luma), and this program was built without FFmpeg";
#endif
// Header lines are some dozens of bytes long; a longer one is no header.
constexpr std::size_t kMaximumLine = 4096;

struct FileCloser {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File OpenFile(const std::string& path) {
  errno = 0;
  File file(path == "-" ? stdin : std::fopen(path.c_str(), "rb"));
  if (!file) throw Failure(WithoutPassword(path) + ": " + LastSystemError());
  return file;
}

/// What both forms share: planes of one size, each at its place in time.
class PlainSource : public FrameSource {
 public:
  explicit PlainSource(const SourceOptions& options)
      : name_(NameOf(options)), remarks_(name_, options.hear), file_(OpenFile(options.input)) {}

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    if (ended_) return false;
    frame.width = info_.width;
    frame.height = info_.height;
    frame.index = index_;
    frame.time_s = Time();
    frame.pixels.resize(PlaneBytes());
    chroma_.resize(chroma_bytes_);
    ended_ = !BeginFrame() || !Read(frame.pixels) || !Read(chroma_);
    if (!ended_) ++index_;
    frame.read = std::chrono::steady_clock::now();
    return !ended_;
  }

 protected:
  /// Reads what stands before a frame's pixels; false at the end of the input, or what is as good as one.
  virtual bool BeginFrame() = 0;

  [[noreturn]] void Fail(const std::string& reason) const { throw Failure(name_ + ": " + reason); }

  /// The input ends at a frame that cannot be read; without one before it, it is no input. False.
  bool EndDamaged(const std::string& reason) {
    if (index_ == 0) Fail(reason);
    remarks_.Say(Remarks::kEnd, Print("ends after %.2f s: ", Time()) + reason);
    return false;
  }

  bool Read(std::vector<std::uint8_t>& bytes) {
    errno = 0;
    if (std::fread(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size()) return true;
    return EndDamaged(Broken() ? LastSystemError() : Frame() + " is cut short");
  }

  /// Whether the last byte that was missing is one that could not be read.
  [[nodiscard]] bool Broken() const { return std::ferror(file_.get()) != 0; }
  [[nodiscard]] std::string Frame() const { return "frame " + std::to_string(index_); }

  enum class Line { kRead, kMissing, kCut, kEndless };
  /// A line without its newline; missing when the input ends before its first byte.
  Line ReadLine(std::string& line) {
    line.clear();
    errno = 0;
    for (int byte = std::fgetc(file_.get()); byte != '\n'; byte = std::fgetc(file_.get())) {
      if (byte == EOF) return line.empty() ? Line::kMissing : Line::kCut;
      line.push_back(static_cast<char>(byte));
      if (line.size() > kMaximumLine) return Line::kEndless;
    }
    return Line::kRead;
  }

  bool AtEnd() {
    errno = 0;
    const int byte = std::fgetc(file_.get());
    return byte == EOF || std::ungetc(byte, file_.get()) == EOF;
  }

  [[nodiscard]] double Time() const { return static_cast<double>(index_) / info_.fps; }

  [[nodiscard]] std::size_t PlaneBytes() const { return std::size_t{1} * info_.width * info_.height; }

  /// header: bytes before the first frame and before each.
  void Describe(const char* kind, std::size_t file_header, std::size_t frame_header) {
    info_.description =
        name_ + ": " + kind + ", " + std::to_string(info_.width) + " x " + std::to_string(info_.height);
    std::error_code error;
    const std::uint64_t bytes = std::filesystem::file_size(name_, error);
    if (!error) {
      info_.frames = static_cast<std::int64_t>((bytes - std::min<std::uint64_t>(bytes, file_header)) /
                                               (frame_header + PlaneBytes() + chroma_bytes_));
    }
  }

  std::string name_;
  Remarks remarks_;
  File file_;
  SourceInfo info_;
  std::size_t chroma_bytes_ = 0;  ///< after each plane, to be passed over
  std::int64_t index_ = 0;

 private:
  bool ended_ = false;
  std::vector<std::uint8_t> chroma_;  ///< read, not skipped: a pipe cannot be positioned
};

class RawSource : public PlainSource {
 public:
  explicit RawSource(const SourceOptions& options) : PlainSource(options) {
    if (options.raw_width > kLongestSide || options.raw_height > kLongestSide) {
      throw Failure("--raw: more than " + std::to_string(kLongestSide) + " columns or rows",
                    ExitCode::kUsage);
    }
    info_.width = options.raw_width;
    info_.height = options.raw_height;
    info_.fps = options.raw_fps;
    Describe("raw luma", 0, 0);
  }

 private:
  bool BeginFrame() override {
    if (!AtEnd()) return true;
    return Broken() && EndDamaged(LastSystemError());
  }
};

/// How many chroma samples a format has, as a divisor of the luma's columns and rows; 0: no chroma.
struct ChromaLayout {
  std::string_view name;
  int across;
  int down;
};
constexpr std::array kLayouts = {
    ChromaLayout{"mono", 0, 0},     ChromaLayout{"420", 2, 2},      ChromaLayout{"420jpeg", 2, 2},
    ChromaLayout{"420mpeg2", 2, 2}, ChromaLayout{"420paldv", 2, 2}, ChromaLayout{"422", 2, 1},
    ChromaLayout{"444", 1, 1},
};

class Y4mSource : public PlainSource {
 public:
  explicit Y4mSource(const SourceOptions& options) : PlainSource(options) {
    if (AtEnd()) Fail(Broken() ? LastSystemError() : "is empty");
    std::array<char, kMagic.size()> magic{};
    const std::size_t read = std::fread(magic.data(), 1, magic.size(), file_.get());
    std::string header;
    if (std::string_view(magic.data(), read) != kMagic) Fail(kNotY4m);
    if (const Line line = ReadLine(header); line != Line::kRead) Fail(FaultOf(line));
    info_.fps = kUnknownRate;
    std::istringstream fields(header);
    for (std::string field; fields >> field;) TakeField(field);
    if (!IsUsableSize({info_.width, info_.height})) {
      Fail("a Y4M header without a usable size");
    }
    TakeLayout();
    constexpr std::size_t kNewline = 1;
    Describe("Y4M", kMagic.size() + header.size() + kNewline, kFrameMagic.size() + kNewline);
  }

 private:
  bool BeginFrame() override {
    std::string line;
    const Line read = ReadLine(line);
    if (read == Line::kMissing && !Broken()) return false;
    if (read != Line::kRead) return EndDamaged(FaultOf(read));
    return line.starts_with(kFrameMagic) || EndDamaged(Frame() + " has no frame header");
  }

  [[nodiscard]] std::string FaultOf(Line line) const {
    if (line == Line::kEndless) return "a header of more than " + std::to_string(kMaximumLine) + " bytes";
    return Broken() ? LastSystemError() : "cut short within a header";
  }

  [[nodiscard]] int HeaderNumber(std::string_view text) const {
    const std::optional<int> number = NumberOf<int>(text);
    if (!number) Fail("a damaged Y4M header");
    return *number;
  }

  void TakeField(const std::string& field) {
    const std::string_view value = std::string_view(field).substr(1);
    if (field[0] == 'W') info_.width = HeaderNumber(value);
    if (field[0] == 'H') info_.height = HeaderNumber(value);
    if (field[0] == 'C') layout_ = value;
    if (field[0] == 'A') TakePixel(value);
    if (field[0] == 'I' && value != "p" && value != "?") remarks_.Say(Remarks::kInterlaced, kInterlaced);
    if (field == "XCOLORRANGE=FULL") remarks_.Say(Remarks::kRange, kFullRange);
    if (field[0] == 'F') {
      const Ratio rate = HeaderRatio(value);
      if (rate.over > 0 && rate.under > 0) info_.fps = static_cast<double>(rate.over) / rate.under;
    }
  }

  struct Ratio {
    int over;
    int under;
  };
  [[nodiscard]] Ratio HeaderRatio(std::string_view text) const {
    const std::size_t colon = std::min(text.find(':'), text.size() - 1);
    return {HeaderNumber(text.substr(0, colon)), HeaderNumber(text.substr(colon + 1))};
  }

  void TakePixel(std::string_view text) {
    const Ratio pixel = HeaderRatio(text);
    if (pixel.over > 0 && pixel.under > 0 && pixel.over != pixel.under) {
      remarks_.Say(Remarks::kPixels, PixelRemark(pixel.over, pixel.under));
    }
  }

  void TakeLayout() {
    const auto* const layout = std::find_if(kLayouts.begin(), kLayouts.end(),
                                            [this](const ChromaLayout& row) { return row.name == layout_; });
    if (layout == kLayouts.end())
      Fail("Y4M of the colour format " + layout_ +
           ", which is not read (mono, 420, 422 and 444 of 8 bits are)");
    if (layout->across == 0) return;
    const auto chroma = [](int luma, int divisor) { return std::size_t{1} * (luma + divisor - 1) / divisor; };
    chroma_bytes_ = 2 * chroma(info_.width, layout->across) * chroma(info_.height, layout->down);
  }

  std::string layout_ = "420jpeg";  ///< what a header without the field means
};

}  // namespace

std::unique_ptr<FrameSource> OpenPlain(const SourceOptions& options) {
  if (options.raw_width != 0) return std::make_unique<RawSource>(options);
  return std::make_unique<Y4mSource>(options);
}

bool IsY4m(const std::string& path) {
  std::error_code ignored;
  // Devices and pipes are not opened for a look: what is read off them is gone.
  if (!std::filesystem::is_regular_file(path, ignored)) return false;
  const File file = OpenFile(path);
  std::array<char, kMagic.size()> start{};
  const std::size_t read = std::fread(start.data(), 1, start.size(), file.get());
  return std::string_view(start.data(), read) == kMagic;
}

}  // namespace stopngo

// speed_source.cpp: the speed of the own vehicle, told by a call or read from a file.
#include "host/gates/speed_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/common/pace.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

constexpr std::string_view kSpaces = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(kSpaces);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kSpaces) + 1 - start);
}

}  // namespace

SpeedSource::SpeedSource(std::string path, double stale_s) : path_(std::move(path)), stale_s_(stale_s) {}

SpeedSource::~SpeedSource() {
  if (pipe_ >= 0) close(pipe_);
}

void SpeedSource::Tell(double speed, double time_s) {
  if (!std::isfinite(speed)) {
    Say(Fault::kNoNumber);
    return;
  }
  speed_ = speed;
  told_s_ = time_s;
}

std::optional<double> SpeedSource::At(double time_s) {
  if (!path_.empty()) Look(time_s);
  if (!told_s_) told_s_ = time_s;
  if (time_s - *told_s_ <= stale_s_ + kSameTime_s) return speed_;
  Say(Fault::kStale);
  return std::nullopt;
}

// A file that is not there is no speed, and becomes stale like one that is not written any more.
void SpeedSource::Look(double time_s) {
  if (pipe_ >= 0) {
    ReadPipe(time_s);
    return;
  }
  struct stat status {};
  if (stat(path_.c_str(), &status) != 0) return;
  const Version version{status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  if (S_ISFIFO(status.st_mode)) {
    pipe_ = open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (pipe_ >= 0) ReadPipe(time_s);
  } else if (S_ISREG(status.st_mode) && version != version_) {
    version_ = version;
    ReadFile(time_s);
  }
}

// Of the lines that have come since, the last whole one counts. A line that fills the room is none.
void SpeedSource::ReadPipe(double time_s) {
  // As much as a pipe holds by default: a writer that never pauses must not keep the frame waiting.
  constexpr int kMostReads = 65536 / 256;
  for (int i = 0; i < kMostReads; ++i) {
    const ssize_t count = read(pipe_, text_.data() + length_, text_.size() - length_);
    if (count <= 0) return;
    length_ += static_cast<std::size_t>(count);
    const std::string_view text(text_.data(), length_);
    const std::size_t end = text.rfind('\n');
    if (end == std::string_view::npos) {
      if (length_ == text_.size()) {
        Say(Fault::kNoNumber);
        length_ = 0;
      }
      continue;
    }
    const std::string_view lines = text.substr(0, end);
    Take(lines.substr(lines.rfind('\n') + 1), time_s);
    length_ = text.size() - end - 1;
    std::copy_n(text.begin() + static_cast<std::ptrdiff_t>(end) + 1, length_, text_.begin());
  }
}

// One that is being written may still be empty. What fills the room is longer than a number.
void SpeedSource::ReadFile(double time_s) {
  const int file = open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return;
  const ssize_t count = read(file, text_.data(), text_.size());
  close(file);
  if (count == static_cast<ssize_t>(text_.size()))
    Say(Fault::kNoNumber);
  else if (count > 0)
    Take({text_.data(), static_cast<std::size_t>(count)}, time_s);
}

void SpeedSource::Take(std::string_view text, double time_s) {
  const std::string_view number = Trimmed(text);
  if (number.empty()) return;
  const std::optional<double> speed = FiniteOf(number);
  speed ? Tell(*speed, time_s) : Say(Fault::kNoNumber);
}

void SpeedSource::Say(Fault fault) {
  bool& said = said_.at(static_cast<std::size_t>(fault));
  if (said) return;
  said = true;
  remark_ = fault == Fault::kNoNumber ? "own speed: what is given for it is no number, and is passed over"
                                      : "own speed: none has come for longer than speed-stale";
}

}  // namespace stopngo

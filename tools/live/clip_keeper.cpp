// clip_keeper.cpp: keeps what an input showed around each alarm.
#include "live/clip_keeper.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iterator>
#include <utility>

#include "base/time_of_day.h"
#include "base/warning.h"
#include "live/clip_writer.h"

namespace stopngo {
namespace {

constexpr std::chrono::minutes kLongestClip{10};  // however many alarms follow one another
constexpr std::chrono::seconds kMissing{1};       // at the end without anything: the input was away
constexpr double kUsualRate = 6;                  // frames a second, of a clip that holds one

std::chrono::steady_clock::duration TicksOf(double time_s) {
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
      std::chrono::duration<double>(time_s));
}

}  // namespace

ClipKeeper::ClipKeeper(ClipOptions options, std::string input)
    : options_(std::move(options)),
      input_(std::move(input)),
      before_(TicksOf(options_.before_s)),
      after_(TicksOf(options_.after_s)),
      writer_([this] { Write(); }) {}

ClipKeeper::~ClipKeeper() { Finish(); }

void ClipKeeper::Stream(const AVStream& stream) {
#ifdef STOPNGO_WITH_FFMPEG
  const auto copy = StreamOf(stream);
  const std::lock_guard lock(turns_);
  stream_ = copy;
  awaits_key_ = true;
#else
  (void)stream;
#endif
}

void ClipKeeper::Packet(const AVPacket& packet) {
#ifdef STOPNGO_WITH_FFMPEG
  std::shared_ptr<const ClipStream> stream;
  {
    const std::lock_guard lock(turns_);
    stream = stream_;
  }
  if (!stream) return;
  ClipPiece piece = PieceOf(packet, stream);
  const std::lock_guard lock(turns_);
  Add(std::move(piece));
#else
  (void)packet;
#endif
}

void ClipKeeper::Frame(const LumaFrame& frame) {
  {
    const std::lock_guard lock(turns_);
    if (stream_) return;
  }
  ClipPiece piece;
  piece.at = Clock::now();
  piece.frame = std::make_shared<const LumaFrame>(frame);
  piece.bytes = frame.pixels.size();
  const std::lock_guard lock(turns_);
  Add(std::move(piece));
}

void ClipKeeper::Raise(const Alarm& alarm) {
  const std::lock_guard lock(turns_);
  const auto now = Clock::now();
  if (finishing_) return;
  CloseDue(now);
  Job* job = Open();
  if (job == nullptr) {
    job = &jobs_.emplace_back();
    job->first = alarm;
    job->start = now;
    job->fps = RateOfFrames();
    const auto key =
        std::find_if(ring_.begin(), ring_.end(), [](const ClipPiece& piece) { return piece.key; });
    job->pieces.assign(key, ring_.end());
    job->begun = key != ring_.end();
    for (const ClipPiece& piece : job->pieces) waiting_bytes_ += piece.bytes;
  }
  job->alarms.push_back(JsonOf(alarm));
  job->until = std::min(now + after_, job->start + std::max<Clock::duration>(kLongestClip, after_));
  news_.notify_one();
}

void ClipKeeper::Finish() {
  {
    const std::lock_guard lock(turns_);
    CloseDue(Clock::now());
    if (Job* const job = Open()) job->closed = job->cut_short = true;
    finishing_ = true;
    news_.notify_one();
  }
  if (writer_.joinable()) writer_.join();
}

ClipKeeper::Counts ClipKeeper::Told() const {
  const std::lock_guard lock(turns_);
  return counts_;
}

void ClipKeeper::Add(ClipPiece piece) {
  if (finishing_) return;
  CloseDue(piece.at);
  awaits_key_ = awaits_key_ && !piece.key;
  if (awaits_key_) return;
  if (Job* const job = Open()) {
    if (waiting_bytes_ + piece.bytes > 2 * options_.memory) {
      job->closed = job->cut_short = true;  // the disk is too slow for what comes
    } else if (job->begun || piece.key) {
      job->begun = true;
      job->pieces.push_back(piece);
      waiting_bytes_ += piece.bytes;
    }
    news_.notify_one();
  }
  ring_bytes_ += piece.bytes;
  ring_.push_back(std::move(piece));
  Trim(ring_.back().at);
}

/// Keeps what a clip would begin with now: from the last key on that all is older before, as far as memory goes.
void ClipKeeper::Trim(Clock::time_point now) {
  auto begin = ring_.begin();
  for (auto piece = ring_.begin(); piece != ring_.end(); ++piece) {
    if (piece != ring_.begin() && std::prev(piece)->at > now - before_) break;
    if (piece->key) begin = piece;
  }
  std::size_t bytes = ring_bytes_;
  for (auto piece = ring_.begin(); piece != begin; ++piece) bytes -= piece->bytes;
  for (; begin != ring_.end() && bytes > options_.memory; ++begin) bytes -= begin->bytes;
  ring_.erase(ring_.begin(), begin);
  ring_bytes_ = bytes;
}

ClipKeeper::Job* ClipKeeper::Open() { return jobs_.empty() || jobs_.back().closed ? nullptr : &jobs_.back(); }

void ClipKeeper::CloseDue(Clock::time_point now) {
  Job* const job = Open();
  if (job != nullptr && now > job->until) job->closed = true;
}

/// They come nearly evenly but for pauses, and a file has one rate.
double ClipKeeper::RateOfFrames() const {
  if (ring_.size() < 2) return kUsualRate;
  std::vector<double> apart_s;
  apart_s.reserve(ring_.size());
  for (std::size_t i = 1; i < ring_.size(); ++i) {
    apart_s.push_back(std::chrono::duration<double>(ring_[i].at - ring_[i - 1].at).count());
  }
  const auto middle = apart_s.begin() + static_cast<std::ptrdiff_t>(apart_s.size() / 2);
  std::nth_element(apart_s.begin(), middle, apart_s.end());
  return std::clamp(1 / std::max(*middle, 1e-3), 1.0, 240.0);
}

void ClipKeeper::Write() {
  std::unique_lock lock(turns_);
  for (;;) {
    while (!jobs_.empty()) {
      Job& job = jobs_.front();  // stays where it is when others come
      WriteJob(lock, job);
      for (const ClipPiece& piece : job.pieces) waiting_bytes_ -= piece.bytes;
      jobs_.pop_front();
    }
    if (finishing_) return;
    news_.wait(lock, [this] { return finishing_ || !jobs_.empty(); });
  }
}

/// The lock is given up while anything is written.
void ClipKeeper::WriteJob(std::unique_lock<std::mutex>& lock, Job& job) {
  std::string fault;
  ClipWriter writer({options_.folder, options_.bounds, input_}, job.first, job.fps);
  bool full = false;  // the clip alone reaches the folder's bound
  for (bool last = false; fault.empty() && !last;) {
    CloseDue(Clock::now());
    if (full) job.closed = job.cut_short = true;
    const std::deque<ClipPiece> pieces = std::exchange(job.pieces, {});
    const std::vector<std::string> alarms = job.alarms;
    last = job.closed;
    lock.unlock();
    std::size_t bytes = 0;
    for (const ClipPiece& piece : pieces) bytes += piece.bytes;
    try {
      full = full || !writer.Write(pieces, alarms);
      // Of a closed job nothing but its pieces changes.
      if (last) {
        job.cut_short = job.cut_short || full || writer.End() < job.until - kMissing;
        writer.Finish(alarms, job.cut_short);
      }
    } catch (const std::exception& error) {
      fault = error.what();
    }
    lock.lock();
    waiting_bytes_ -= bytes;
    if (last || full || !fault.empty()) continue;
    news_.wait_until(lock, job.until, [&job] { return job.closed || !job.pieces.empty(); });
  }
  job.closed = true;
  counts_.written += writer.Files();
  if (fault.empty()) {
    counts_.cut_short += job.cut_short ? 1 : 0;
    return;
  }
  ++counts_.failed;
  lock.unlock();  // who reads what is said may let wait
  Report((writer.Files() == 0 ? "no clip" : "no more of the clip") + std::string(" of the alarm of ") +
         TimeOfDay(job.first.when) + ": " + fault);
  lock.lock();
}

}  // namespace stopngo

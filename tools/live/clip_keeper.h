// clip_keeper.h: keeps what an input showed around each alarm.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "live/alarm.h"
#include "live/clip_folder.h"
#include "live/clip_piece.h"
#include "video/packet_tap.h"

namespace stopngo {

struct ClipOptions {
  std::string folder;
  double before_s = 10;  ///< a clip begins with the last key packet that is as old
  double after_s = 5;
  ClipBounds bounds;
  std::size_t memory = std::size_t{64}
                       << 20;  ///< bytes of packets or frames that are kept, and as many on their way
};

/// Packets of an encoded input are written as they are; of others, the frames that the detector gets. What belongs
/// to an alarm is told by when it came, on a steady clock: by as much as the input's decoder holds back, a clip
/// begins later before its alarm. An input that is opened anew goes on in the clip, or in a second one when its
/// packets or frames are others. Neither the thread that reads nor the detector's waits for the disk: one thread of
/// this object writes. What goes wrong there is said and counted, and tried again at the next alarm.
class ClipKeeper : public PacketTap {
 public:
  struct Counts {
    std::int64_t written = 0;  ///< files
    std::int64_t failed = 0;
    std::int64_t cut_short = 0;  ///< of those written, that lack their end
  };

  ClipKeeper(ClipOptions options, std::string input);
  /// As Finish.
  ~ClipKeeper() override;

  void Stream(const AVStream& stream) override;
  void Packet(const AVPacket& packet) override;
  /// What the detector is handed; left out where there are packets.
  void Frame(const LumaFrame& frame);
  /// While a clip goes on, the alarm becomes one of its own, and it goes on for longer.
  void Raise(const Alarm& alarm);
  /// Writes what is there of the clip that goes on. Nothing is taken from here on.
  void Finish();
  [[nodiscard]] Counts Told() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct Job {
    Alarm first;
    std::vector<std::string> alarms;
    std::deque<ClipPiece> pieces;  ///< not written yet
    Clock::time_point start;
    Clock::time_point until;
    double fps = 0;
    bool begun = false;  ///< with a key
    bool closed = false;
    bool cut_short = false;
  };

  void Add(ClipPiece piece);
  void Trim(Clock::time_point now);
  Job* Open();
  void CloseDue(Clock::time_point now);
  void Write();
  void WriteJob(std::unique_lock<std::mutex>& lock, Job& job);
  double RateOfFrames() const;

  const ClipOptions options_;
  const std::string input_;
  const Clock::duration before_;
  const Clock::duration after_;
  mutable std::mutex turns_;
  std::condition_variable news_;
  std::shared_ptr<const ClipStream> stream_;
  bool awaits_key_ = false;  ///< nothing can be made of what comes before it
  std::deque<ClipPiece> ring_;
  std::size_t ring_bytes_ = 0;
  std::size_t waiting_bytes_ = 0;  ///< of all jobs' pieces
  std::deque<Job> jobs_;           ///< only the last may be open; the first is written
  bool finishing_ = false;
  Counts counts_;
  std::thread writer_;
};

}  // namespace stopngo

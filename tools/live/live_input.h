// live_input.h: an input that does not wait for us: read on a thread of its own, the newest frame handed over.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "video/frame_source.h"

namespace stopngo {

using SteadyTime = std::chrono::steady_clock::time_point;

struct LiveLimits {
  double silence_s = 5;   ///< without a frame, after which the input is opened anew
  double opening_s = 15;  ///< that opening may take, if that is longer: streams are looked at for a while
  bool reopens =
      true;          ///< false: it cannot be opened twice, as standard input; silence is said and waited out
  int retries = -1;  ///< how often that is tried in a row; below 0: for ever
  double first_wait_s = 0.5;  ///< before the first of them, twice as long before each one that follows
  double longest_wait_s = 30;
  bool ends = false;   ///< it has an end that is no trouble, as a recording or standard input has
  bool paced = false;  ///< it would come faster than it was recorded: its frames wait for their time
};

/// Since the input was made.
struct LiveFigures {
  bool connected = false;
  std::int64_t frames = 0;      ///< that came in
  std::int64_t dropped = 0;     ///< wanted, but a newer one came before they were taken
  std::int64_t damages = 0;     ///< kinds of damage that were said, each once a connection
  std::int64_t reconnects = 0;  ///< how often it was opened anew with success
  std::int64_t troubles = 0;    ///< how often it could not be opened or read on
  std::string last_trouble;     ///< a sentence; empty: none
};

struct LiveFrame {
  LumaFrame luma;      ///< its index and time go on over reconnections
  bool anew = false;   ///< the first one of a connection: nothing is to be compared with it
  FrameFormat format;  ///< of the connection
};

/// Opens the input once; called again after trouble, on the reading thread. gives_up and hear are for the options of
/// the source. Throws Failure; of wrong usage there is no second try.
using OpenLive =
    std::function<std::unique_ptr<FrameSource>(std::function<bool()> gives_up, RemarkHearer hear)>;

class LiveInput {
 public:
  /// name: for what is said. Reading begins at once.
  LiveInput(std::string name, OpenLive open, LiveLimits limits);
  /// Ends the reading, whatever it waits for.
  ~LiveInput();
  LiveInput(const LiveInput&) = delete;
  LiveInput& operator=(const LiveInput&) = delete;

  enum class Taken { kFrame, kNothing, kEnd };
  /// Waits for a frame that was not taken yet, nothing when none came in the time. Throws Failure when the input has
  /// ended in trouble. For one thread, which has to call it again and again: a silent input is noticed here.
  Taken Take(LiveFrame& frame, std::chrono::milliseconds patience);
  [[nodiscard]] LiveFigures Figures() const;
  /// Has it opened once more, since what it is opened with has changed. That is no trouble.
  void OpenAnew();

 private:
  void Run();
  bool TryAgain(const std::string& trouble);
  void Connect();
  void Read(FrameSource& source);
  void Put(LumaFrame& frame, const SourceInfo& info, bool first);
  void WaitFor(SteadyTime time);
  void Hear(const Remark& remark, bool first);
  void WakeReader();
  [[nodiscard]] double Patience_s() const;
  [[nodiscard]] bool Silent() const;
  [[nodiscard]] bool IsEnding() const;
  void TellSilence();
  [[nodiscard]] bool GivesUp() const { return IsEnding() || opens_anew_ || (limits_.reopens && Silent()); }
  void Heard() { last_heard_ = std::chrono::steady_clock::now(); }

  std::string name_;
  OpenLive open_;
  LiveLimits limits_;
  const SteadyTime start_ = std::chrono::steady_clock::now();

  // The reading thread's own.
  double time_s_ = 0;        ///< of the last frame
  std::int64_t index_ = -1;  ///< of the last frame
  double wait_s_ = 0;        ///< before the next try; 0: the first one
  int tries_ = 0;            ///< in a row
  bool connected_before_ = false;

  std::atomic<bool> ending_{false};
  std::atomic<bool> opens_anew_{false};
  std::atomic<bool> reading_{true};  ///< the thread goes on
  std::atomic<bool> opening_{false};
  std::atomic<bool> waiting_{false};  ///< for the input, which may be silent for too long
  std::atomic<SteadyTime> last_heard_;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  LiveFrame newest_;    // guarded by mutex_, and all below
  bool fresh_ = false;  ///< newest_ was not taken yet
  bool ended_ = false;
  std::exception_ptr fault_;  ///< that it ended with
  LiveFigures figures_;
  bool told_silence_ = false;

  std::thread thread_;  // last, so that it finds all of it
};

}  // namespace stopngo

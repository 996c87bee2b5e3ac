// interruption.h: signals end a command, and nothing unfinished stays behind.
#pragma once

#include <cstddef>
#include <string>

namespace stopngo {

/// To be called when the program starts. From then on SIGINT, SIGTERM and SIGHUP remove unfinished files and
/// end the program as they would have ended it anyway, so that a shell sees which it was. A pipe that nobody
/// reads shows as a write that fails; see EndBySignal.
void CatchSignals();

/// Removes every unfinished file, for a program that is about to end whatever else is going on.
void RemoveUnfinished();

/// Ends the program by a signal, as if that had never been caught.
[[noreturn]] void EndBySignal(int signal);

/// For work that is of use as far as it got. While an object of it lives, the first signal only raises a flag
/// and takes effect when the object goes. The work has two seconds to see the flag, since its input may have
/// no more to give; then, and at the next signal, the program ends at once all the same. One at a time.
class EndsEarly {
 public:
  EndsEarly();
  ~EndsEarly();
  EndsEarly(const EndsEarly&) = delete;
  EndsEarly& operator=(const EndsEarly&) = delete;

  /// The input has come to its end, or Interrupted() was seen: what is left takes as long as it takes.
  void Finishing();
};

/// While one lives, signals wait: for steps that are done all or not at all.
class SignalsWait {
 public:
  SignalsWait();
  ~SignalsWait();
  SignalsWait(const SignalsWait&) = delete;
  SignalsWait& operator=(const SignalsWait&) = delete;
};

/// Whether a signal came.
[[nodiscard]] bool Interrupted();

/// The name of the signal that came, such as "SIGINT"; null when none did.
[[nodiscard]] const char* InterruptingSignal();

/// While one lives, SIGHUP ends nothing: it asks for settings to be read anew. One at a time.
class ReloadsAtHangup {
 public:
  ReloadsAtHangup();
  ~ReloadsAtHangup();
  ReloadsAtHangup(const ReloadsAtHangup&) = delete;
  ReloadsAtHangup& operator=(const ReloadsAtHangup&) = delete;

  /// Whether that was asked for since the last call.
  [[nodiscard]] static bool TakeRequest();
};

/// A file that a signal removes as long as the object lives. Of more than a dozen, the last are not known.
class UnfinishedFile {
 public:
  /// To be made before the file is, so that there is no moment at which it would stay.
  explicit UnfinishedFile(std::string path);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::string path_;
  std::size_t slot_;
};

}  // namespace stopngo

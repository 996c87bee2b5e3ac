// gate.h: a gate: something that may speak against an alarm, whatever the scores are.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace stopngo {

/// What a closed gate does to the evidence for an alarm.
enum class GateHold {
  kCountsOn,   ///< it is counted on, and the alarm may come as soon as the gate opens
  kStartsNew,  ///< it is dropped, and counted from nothing when the gate opens
};

/// What a frame that was handed over came to.
struct GateFrame {
  double time_s = 0;    ///< its time stamp, which never falls
  bool decided = true;  ///< false on the first frame, which nothing is compared with
  /// Of the pair with the frame before: down, right, up and left of a cell, cells row by row. Empty: the module
  /// analysed nothing.
  std::span<const std::int8_t> histogram;
  int columns = 0;  ///< of cells
  int decision = 0;
  float score = 0;
  double luma = 0;        ///< mean of the region, 0 to 255
  bool repeated = false;  ///< every pixel of the region is as it was in the frame before
};

/// Is asked before and after every frame. It goes by the frames' time stamps alone, so that the same frames give the
/// same results on every machine, and allocates nothing once it is made.
class Gate {
 public:
  explicit Gate(GateHold hold) : hold_(hold) {}
  virtual ~Gate() = default;
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  /// A frame is going to be handed over. speed: of the own vehicle, where it is known.
  virtual void Before(double time_s, std::optional<double> speed) = 0;
  virtual void After(const GateFrame& frame) = 0;

  /// Why it is closed, in a few words that stay the same from version to version; null: it is open.
  [[nodiscard]] const char* Reason() const { return reason_; }
  [[nodiscard]] GateHold Hold() const { return hold_; }

 protected:
  const char* reason_ = nullptr;

 private:
  GateHold hold_;
};

}  // namespace stopngo

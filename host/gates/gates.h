// gates.h: the gates around a detector, which hold its alarms back through the module's own settings.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/common/luma.h"
#include "host/gates/gate.h"
#include "host/gates/speed_source.h"
#include "host/module/module.h"
#include "host/settings/gate_kinds.h"
#include "host/settings/settings.h"
#include "vel_stopngo.h"

namespace stopngo {

/// By kind: why it is closed; null: it is open, or not there.
using ClosedGates = std::array<const char*, kGateCount>;

/// Those that are closed: "light (light changes), once (told already)"; empty: none.
std::string ClosedText(const ClosedGates& closed);
/// The same in place of what a text holds, which keeps its memory.
void PutClosedText(const ClosedGates& closed, std::string& text);

/// What the pixels of a frame tell gates.
struct PixelFigures {
  double luma = 0;        ///< mean of the region, 0 to 255
  bool repeated = false;  ///< every pixel of the region is as it was in the frame before
};

/// context: of a detector that has just been given a frame.
PixelFigures ReadPixels(const VEL_STOPNGO_CTX& context);

/// Everything that the settings ask for. It belongs to one detector, whose record it is given with every frame, and
/// allocates nothing once it is made.
class Gates {
 public:
  /// The settings have some gates. Throws Failure when one cannot be made.
  Gates(const Module& module, const Settings& settings, double fps);

  /// The own vehicle's speed, in the unit of `speed-above`, at a time on the frames' clock.
  void SetSpeed(double speed, double time_s) { speed_.Tell(speed, time_s); }
  /// What is wrong with an input of theirs, each once, in a sentence; null: nothing more.
  [[nodiscard]] const char* TakeRemark() { return speed_.TakeRemark(); }

  /// Before a frame is written: asks, and holds the module or lets it go.
  void Before(double time_s, VEL_STOPNGO_CTX& context);
  /// After it: shows them what the module made of it. frame: all but what its pixels tell.
  void After(GateFrame frame, const VEL_STOPNGO_CTX& context);
  /// The same for a frame of which everything is known.
  void After(const GateFrame& frame);
  /// Those that were closed when the last frame was written.
  [[nodiscard]] const ClosedGates& Closed() const { return closed_; }

 private:
  struct Place {
    GateKind kind;
    std::unique_ptr<Gate> gate;
  };

  void Hold(VEL_STOPNGO_CTX& context, bool closed, bool anew) const;

  const VEL_STOPNGO_OPERATION& operations_;
  int time_leaving_;  ///< the detector's own
  int gap_op_;
  SpeedSource speed_;
  std::vector<Place> places_;
  bool looks_;  ///< one of them goes by pixels
  ClosedGates closed_{};
};

}  // namespace stopngo

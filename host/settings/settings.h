// settings.h: the record of every setting that a detector runs with.
#pragma once

#include <optional>
#include <string>

#include "host/settings/gate_kinds.h"

namespace stopngo {

/// A number of frames, given as such ("25") or in seconds ("1.5s").
struct FrameCount {
  double value = 0;
  bool seconds = false;
  /// At a rate of fps fed frames a second, rounded to the nearest frame.
  [[nodiscard]] int Frames(double fps) const;
};

/// Below it no clip has a second frame to hand over, and times in frames leave the range of whole numbers.
inline constexpr double kLowestRate = 0.01;

/// Those that are asked for as `default`.
inline constexpr int kDefaultGates = BitOf(GateKind::kHistory);

/// What the speed gate is where the own speed is not known: values of Settings::speed_fails.
inline constexpr int kFailsOpen = 0;
inline constexpr int kFailsClosed = 1;

/// The settings of one run. Defaults are the module's own but for the region, which the tools put
/// where a forward camera sees the vehicle ahead, and for the rate, with the times that follow from it:
/// a vehicle that moves off shifts by a tenth of a pixel a frame at 30 frames a second and by whole
/// pixels, which block matching can see, at 5 to 10.
struct Settings {
  std::string weights;      ///< path of the weights file; empty: those found by default
  bool no_weights = false;  ///< run all the same
  int input_width = 800;
  int input_height = 480;
  int roi_x = 290;
  int roi_y = 260;
  int roi_width = 220;
  int roi_height = 140;
  int scale = 0;
  std::optional<int> original_size;  ///< unset: follows the frames that are handed over
  int block_size = 10;
  int features = 80;
  int hiddens = 16;
  double threshold = 0.4;
  FrameCount time_beeping{1, true};
  /// A driver is told of a departure once. It goes on being seen for some seconds, in which second alarms
  /// were met up to 2.4 s after the first; in 5 s even one at 0.5 m/s² has gone 6 m. A queue that moves up
  /// takes longer to come to rest and start again.
  FrameCount time_cooling{5, true};
  FrameCount time_leaving{3, false};
  FrameCount frame_skip{0, false};
  int gap_op = 2;
  int filter = 0;
  int log = 0;
  std::string debug_fb;  ///< file that receives the debug framebuffer after the last frame; empty: none
  int lcd_width = 800;
  int lcd_height = 480;
  double rate = 6;  ///< frames a second to feed; 0: all

  /// Gates around the module, a bit each (host/gates/gate.h). Times are seconds of the frames' time stamps: a gate goes by
  /// what is seen, and not by how many frames show it.
  int gates = 0;
  std::string history_weights;     ///< empty: those found by default
  double history_threshold = 0.5;  ///< score of the history, below which it is closed
  /// Of the region's mean. A dark vehicle that fills a third of it and leaves within 3 s changes it by 7 a second;
  /// a step of exposure by 5 levels, which is hardly seen, at 6 frames a second by 30.
  double light_rate = 25;
  double light_calm_s = 0.5;
  std::string speed_file;  ///< empty: the host tells the speed, or nobody does
  double speed_above = 1;  ///< in the source's unit: km/h and m/s alike, standing is below
  double speed_time_s = 3;
  double speed_stale_s = 2;
  int speed_fails = kFailsOpen;
  /// Sums of the histogram. With a camera in a car that drives, half of all pairs have above 1000 and nine in ten
  /// above 500; nine in ten have below 300 while it stands.
  int once_busy = 500;
  int once_calm = 300;
  double once_busy_time_s = 3;
  double once_calm_time_s = 1;
  double picture_frozen_s = 2;
  /// Mean luma. Limited range has its black at 16, but regions of full range at night have means of 15, and a departure
  /// must not be held back there.
  double picture_black = 8;
  double picture_lost_s = 1;
};

/// For a detector that is looked at and not asked to decide: without weights every score is 0.5; no log, no gates.
Settings OnlyLooking(Settings settings);

}  // namespace stopngo

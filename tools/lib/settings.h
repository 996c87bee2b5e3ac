// settings.h: every setting of the detector as the tools know it: option, TOML key, control code.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace stopngo {

/// A number of frames, given as such ("25") or in seconds ("1.5s").
struct FrameCount {
  double value = 0;
  bool seconds = false;
  /// At a rate of fps fed frames a second, rounded to the nearest frame.
  [[nodiscard]] int Frames(double fps) const;
};

/// The settings of one run. Defaults are the module's own but for the region, which the tools put
/// where a forward camera sees the vehicle ahead.
struct Settings {
  std::string weights;      ///< path of the weights file; empty: none
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
  FrameCount time_beeping{25, false};
  FrameCount time_cooling{20, false};
  FrameCount time_leaving{3, false};
  FrameCount frame_skip{0, false};
  int gap_op = 2;
  int filter = 0;
  int log = 0;
  std::string debug_fb;  ///< file that receives the debug framebuffer after the last frame; empty: none
  int lcd_width = 800;
  int lcd_height = 480;
  double rate = 0;  ///< frames a second to feed; 0: all
};

/// Adds an option for every setting to a subcommand, and --config FILE for the TOML file. Call
/// LoadConfig after parsing: it fills in what the file gives and no option gave.
class SettingsOptions {
 public:
  SettingsOptions(CLI::App& app, Settings& settings);
  /// Throws Failure naming file, line and key when the file is unreadable, malformed, or has a key or
  /// a value that is not known.
  void LoadConfig();

 private:
  CLI::App& app_;
  Settings& settings_;
  std::string config_;
};

}  // namespace stopngo

// announced_end.h: when a recording ends by what its file says, against what came of it. Only used with FFmpeg.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "video/ffmpeg.h"

namespace stopngo {

/// Follows the packets of all streams: a file that was cut short lacks the end of each.
class AnnouncedEnd {
 public:
  /// input: just opened. Afterwards the library gives streams lengths of its own estimate, which announce nothing.
  explicit AnnouncedEnd(const AVFormatContext& input);
  /// For after the library looked at the first packets, where some formats tell of the whole.
  void TakeWhole(const AVFormatContext& input);

  void Add(const AVFormatContext& input, const AVPacket& packet);

  /// For after the last packet: the length in seconds that the file announces, where what came falls short of it.
  /// stream: whose own length counts, besides that of the whole.
  [[nodiscard]] std::optional<double> Missed(std::size_t stream) const;

 private:
  /// Seconds, by the clock of the file.
  struct Stream {
    std::optional<double> announced;
    double first = 0;
    double last = 0;  ///< the end of the latest packet
    double step = 0;  ///< the longest that a packet lasts
    bool came = false;
  };

  std::optional<double> announced_;  ///< of the whole
  std::vector<Stream> streams_;
};

}  // namespace stopngo

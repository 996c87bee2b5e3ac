// host.cpp: host.c over the library in host/, which finds module and weights, checks the set-up, thins and tells why.
#include <iostream>

#include "host/check.h"
#include "host/common/failure.h"
#include "host/common/pace.h"
#include "host/detector.h"
#include "host/settings/default_weights.h"

int main(int argc, char** argv) try {
  const int padding = argc == 3 ? std::stoi(argv[1]) : -1;  // bytes behind each row
  const double fps = argc == 3 ? std::stod(argv[2]) : 0;
  if (padding < 0 || !(fps > 0)) throw stopngo::Failure("usage: host PADDING FPS < FRAMES");
  const auto read = [padding](stopngo::LumaFrame& frame) {  // the camera's next
    if (std::cin.peek() == EOF) return false;
    for (auto row = frame.pixels.begin(); row != frame.pixels.end() && std::cin; row += frame.width)
      std::cin.read(reinterpret_cast<char*>(&*row), frame.width).ignore(padding);
    return std::cin ? true : throw stopngo::Failure("the input ends within a frame");
  };
  stopngo::Setup setup;
  setup.settings.weights = stopngo::FindDefaultWeights().value_or("");
  setup.sidecar = TakeSidecar(setup.settings, [](const auto& /*name*/) { return false; });
  const stopngo::Module module;
  for (const auto& finding : CheckSetup(module, setup)) throw stopngo::Failure(SentenceOf(finding));
  const auto [width, height, rate] = FramesOf(setup);
  stopngo::Detector detector(module, setup.settings, {width, height, rate});
  stopngo::Pace pace(rate, fps);
  stopngo::LumaFrame next{width, height, 0, 0, std::vector<std::uint8_t>(std::size_t{1} * width * height)};
  for (bool more = read(next); more;) {
    stopngo::LumaFrame frame = next;
    next.time_s = static_cast<double>(++next.index) / fps;
    more = read(next);
    if (!pace.Takes(frame.time_s, more ? std::optional(next.time_s) : std::nullopt)) continue;
    const auto report = detector.Write(frame);
    if (report.changed) std::cout << report.time_s << " s  decision " << report.decision << std::endl;
  }
} catch (const std::exception& fault) {
  return std::cerr << "host: " << fault.what() << '\n', 1;
}

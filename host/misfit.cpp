// misfit.cpp: what cannot work, told before the module is asked or after it refused.
#include "host/misfit.h"

#include <cstdint>

#include "host/common/failure.h"
#include "host/settings/weights_file.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {
namespace {

struct Extent {
  std::uint64_t width;
  std::uint64_t height;
};

std::string Text(const Extent& size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

// The frames that the module will read, by its settings.
Extent ExpectedSize(const VEL_STOPNGO_CTX& context) {
  const std::optional<FrameSize> original =
      OriginalSize(context.originalSize, static_cast<int>(context.EndXInput));
  if (original) {
    return {static_cast<std::uint64_t>(original->width), static_cast<std::uint64_t>(original->height)};
  }
  return {context.EndXInput, context.EndYInput};
}

}  // namespace

void CheckFrameSize(const VEL_STOPNGO_CTX& context, const FrameFormat& frames) {
  const Extent expected = ExpectedSize(context);
  const Extent given{static_cast<std::uint64_t>(frames.width), static_cast<std::uint64_t>(frames.height)};
  if (expected.width == given.width && expected.height == given.height) return;
  throw Failure("the settings announce frames of " + Text(expected) + ", but the frames handed over are " +
                    Text(given) + " (see --original, --original-size, --input-width, --input-height)",
                ExitCode::kUsage);
}

void CheckWeights(const std::string& path, const VEL_STOPNGO_CTX& context) {
  if (path.size() >= kPathCapacity) {
    throw Failure(path + ": the module takes paths of at most " + std::to_string(kPathCapacity - 1) +
                  " bytes");
  }
  (void)ReadWeights(path, 2 * std::uint64_t{context.Features}, context.Hiddens, "--features, --hiddens");
}

std::string MisfitOf(const VEL_STOPNGO_CTX& context) {
  const Extent region{context.EndX, context.EndY};
  // A corner may have been given as a negative number.
  const auto x = static_cast<int>(context.ROI_X);
  const auto y = static_cast<int>(context.ROI_Y);
  return "a region of " + Text(region) + " at " + std::to_string(x) + ", " + std::to_string(y) +
         " with scale " + std::to_string(context.Scale) + ", blocks of " + std::to_string(context.BlockSize) +
         ", " + std::to_string(context.Features) + " features and " + std::to_string(context.Hiddens) +
         " hidden nodes does not fit frames of " + Text(ExpectedSize(context)) +
         " (see --roi-x, --roi-y, --roi-width, --roi-height, --scale, --block-size, --features, --hiddens)";
}

}  // namespace stopngo

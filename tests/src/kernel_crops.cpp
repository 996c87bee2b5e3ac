// kernel_crops.cpp: random crops: patterns of any kind, and those of the exported routines.
#include <algorithm>
#include <memory>

#include "kernel_calls.h"
#include "vel_stopngo.h"

namespace test {
namespace {

/// The source bytes of a crop, as offsets from where the routine was told that the image starts, and the
/// number of bytes that it writes.
struct Extent {
  std::ptrdiff_t first = 0, last = 0;
  std::size_t output = 0;
};

Extent ExtentOf(std::ptrdiff_t input, std::ptrdiff_t row_step, const Pattern& rows, const Pattern& columns,
                std::uint32_t height, std::uint32_t width) {
  const auto top = static_cast<std::ptrdiff_t>(rows.At(0)) * row_step;
  const auto bottom = static_cast<std::ptrdiff_t>(rows.At(height - 1)) * row_step;
  return {input + std::min(top, bottom) + static_cast<std::ptrdiff_t>(columns.At(0)),
          input + std::max(top, bottom) + static_cast<std::ptrdiff_t>(columns.At(width - 1)) + 1,
          std::size_t{height} * width};
}

/// A crop on its way: what it does with an image and an output.
using Crop = std::function<void(const std::uint8_t* image, std::uint8_t* output)>;

/// Makes crop with table on an image of which only the bytes of extent are mapped.
Pixels MakeCrop(const Crop& crop, const Extent& extent, const Pixels& source, const KernelTable& table,
                Fenced::Side side) {
  const Fenced input(source, side);
  const Fenced output(Pixels(extent.output, 0x55), side);
  ForceKernels(&table);
  crop(input.Data() - extent.first, output.Data());
  ForceKernels(nullptr);
  return {output.Bytes().begin(), output.Bytes().end()};
}

// What the exported routines ask the kernel for is learned from one that touches nothing.
std::uint8_t spied_image;
Extent spied;

void Spy(const std::uint8_t* input, std::ptrdiff_t row_step, const Pattern& rows, const Pattern& columns,
         std::uint8_t* /*output*/, std::uint32_t height, std::uint32_t width) {
  spied = ExtentOf(input - &spied_image, row_step, rows, columns, height, width);
}

Extent Learn(const Crop& crop) {
  KernelTable table = AvailableKernels().front();
  table.Resample = Spy;
  spied = {};
  ForceKernels(&table);
  std::uint8_t output = 0;
  crop(&spied_image, &output);
  ForceKernels(nullptr);
  return spied;
}

Call Exported(Random& random, const Crop& crop, std::string what) {
  const Extent extent = Learn(crop);
  auto source = std::make_shared<Pixels>(static_cast<std::size_t>(extent.last - extent.first));
  random.Fill(*source);
  return {std::move(what), [=](const KernelTable& table, Fenced::Side side) {
            return MakeCrop(crop, extent, *source, table, side);
          }};
}

/// Offsets in order, the last one no further than the next group's first, as every pattern has them.
Pattern DrawPattern(Random& random) {
  constexpr Pattern kSimple[] = {kCopy, kEverySecond, kEveryThird, {1, 4, {0, 0, 0, 0}}};
  if (random.Below(2) == 0) return kSimple[random.Below(std::size(kSimple))];
  Pattern pattern{
      static_cast<std::uint8_t>(1 + random.Below(21)), static_cast<std::uint8_t>(1 + random.Below(12)), {}};
  const bool copy = pattern.Source == 1 && pattern.Output == 1;
  const auto first = static_cast<std::uint8_t>(!copy && random.Below(4) == 0 ? random.Below(3) : 0);
  for (int i = 1; i < pattern.Output; ++i) {
    pattern.Offset[i] = static_cast<std::uint8_t>(random.Below(pattern.Source + 1U));
  }
  std::sort(pattern.Offset, pattern.Offset + pattern.Output);
  for (int i = 0; i < pattern.Output; ++i)
    pattern.Offset[i] = static_cast<std::uint8_t>(pattern.Offset[i] + first);
  return pattern;
}

std::string Described(const Pattern& pattern) {
  std::string text = " " + std::to_string(pattern.Source) + ":";
  for (int i = 0; i < pattern.Output; ++i) text += std::to_string(pattern.Offset[i]) + ",";
  return text;
}

/// Sizes of an output and a source around it: sometimes no larger than what is sampled.
struct Frame {
  std::uint32_t height, width;  ///< of the output
  std::uint32_t top, left;
  std::uint32_t rows, columns;  ///< of the source
  std::int32_t flip;
  [[nodiscard]] std::string Name() const {
    return std::to_string(width) + " x " + std::to_string(height) + " at " + std::to_string(left) + ", " +
           std::to_string(top) + " of " + std::to_string(columns) + " x " + std::to_string(rows) + " flip " +
           std::to_string(flip);
  }
};

Frame DrawFrame(Random& random, std::uint32_t most_source_per_output) {
  Frame frame{};
  const bool usual = random.Below(16) == 0;
  frame.height = usual ? 140 : DrawSize(random, 40);
  frame.width = usual ? 220 : DrawSize(random, 240);
  frame.top = random.Below(3) == 0 ? 0 : random.Below(20);
  frame.left = random.Below(3) == 0 ? 0 : random.Below(70);
  frame.rows = most_source_per_output * (frame.top + frame.height) + random.Below(20);
  frame.columns = most_source_per_output * (frame.left + frame.width) + random.Below(70);
  frame.flip = random.Below(2) == 0 ? -1 : 0;
  return frame;
}

using Rectangle = std::array<std::uint32_t, 4>;

Rectangle LocationOf(const Frame& frame) {
  return {frame.top, frame.left, frame.top + frame.height, frame.left + frame.width};
}

}  // namespace

Call DrawResample(Random& random) {
  const Pattern rows = DrawPattern(random);
  const Pattern drawn = DrawPattern(random);
  const Pattern& columns = random.Below(3) == 0 ? rows : drawn;
  const std::uint32_t height = DrawSize(random, 40);
  const std::uint32_t width = DrawSize(random, 240);
  const auto across = static_cast<std::ptrdiff_t>(columns.At(width - 1) + random.Below(30) + 1);
  const std::ptrdiff_t step = random.Below(2) == 0 ? -across : across;
  const Extent extent = ExtentOf(0, step, rows, columns, height, width);
  auto source = std::make_shared<Pixels>(static_cast<std::size_t>(extent.last - extent.first));
  random.Fill(*source);
  return {std::to_string(width) + " x " + std::to_string(height) + Described(columns) + " rows" +
              Described(rows) + " row distance " + std::to_string(step),
          [=](const KernelTable& table, Fenced::Side side) {
            const Crop crop = [&](const std::uint8_t* image, std::uint8_t* output) {
              table.Resample(image, step, rows, columns, output, height, width);
            };
            return MakeCrop(crop, extent, *source, table, side);
          }};
}

Call DrawDecimationInPlace(Random& random) {
  const bool third = random.Below(2) == 0;
  const std::uint32_t every = third ? 3 : 2;
  const std::uint32_t height = DrawSize(random, 40);
  const std::uint32_t width = DrawSize(random, 300);
  auto source = std::make_shared<Pixels>(std::size_t{every} * every * height * width);
  random.Fill(*source);
  return {"every " + std::to_string(every) + " " + std::to_string(width) + " x " + std::to_string(height),
          [=](const KernelTable& table, Fenced::Side side) {
            const Fenced image(*source, side);
            ForceKernels(&table);
            (third ? Image_Subsampling_3_ : Image_Subsampling_2_)(image.Data(), image.Data(), height, width);
            ForceKernels(nullptr);
            return Pixels(image.Data(), image.Data() + std::size_t{height} * width);
          }};
}

Call DrawCropping(Random& random) {
  constexpr std::uint32_t kRatios[] = {0, 2, 4, 5, 6, 7, 8};
  const std::uint32_t ratio = kRatios[random.Below(std::size(kRatios))];
  const Frame frame = DrawFrame(random, 1);
  const Crop crop = [=](const std::uint8_t* image, std::uint8_t* output) {
    const Rectangle location = LocationOf(frame);
    Image_Cropping_(image, output, location.data(), location.data(), ratio, frame.flip, frame.rows,
                    frame.columns);
  };
  return Exported(random, crop, "ratio " + std::to_string(ratio) + " " + frame.Name());
}

Call DrawOriginalCropping(Random& random) {
  const std::uint32_t ratio = 2 * random.Below(5);
  const bool larger = random.Below(2) == 0;
  const Frame frame = DrawFrame(random, 3);
  const Crop crop = [=](const std::uint8_t* image, std::uint8_t* output) {
    const Rectangle location = LocationOf(frame);
    Image_Original_Cropping_(larger ? 1920 : 1280, larger ? 1080 : 720, image, output, location.data(),
                             location.data(), ratio, frame.flip, frame.rows, frame.columns);
  };
  return Exported(random, crop,
                  (larger ? "1920 ratio " : "1280 ratio ") + std::to_string(ratio) + " " + frame.Name());
}

Call DrawDecimation(Random& random) {
  struct Routine {
    const char* name;
    void (*crop)(const std::uint8_t* image, std::uint8_t* output, const Frame& frame);
  };
  static constexpr Routine kRoutines[] = {
      {"Image_Subsampling_2_",
       [](auto image, auto output, auto& f) { Image_Subsampling_2_(image, output, f.height, f.width); }},
      {"Image_Subsampling_3_",
       [](auto image, auto output, auto& f) { Image_Subsampling_3_(image, output, f.height, f.width); }},
      {"Image_Cropping_2_",
       [](auto image, auto output, auto& f) {
         const Rectangle location = {f.top, f.left, f.top + 2 * f.height, f.left + f.width};
         Image_Cropping_2_(image, output, location.data(), f.flip, f.rows, f.columns);
       }},
      {"Image_ROI_2_",
       [](auto image, auto output, auto& f) {
         Image_ROI_2_(image, output, LocationOf(f).data(), f.flip, f.rows, f.columns);
       }},
      {"Image_ROI_3_",
       [](auto image, auto output, auto& f) {
         Image_ROI_3_(image, output, LocationOf(f).data(), f.flip, f.rows, f.columns);
       }},
  };
  const Routine& routine = kRoutines[random.Below(std::size(kRoutines))];
  const Frame frame = DrawFrame(random, 3);
  const Crop crop = [=](const std::uint8_t* image, std::uint8_t* output) {
    routine.crop(image, output, frame);
  };
  return Exported(random, crop, std::string(routine.name) + " " + frame.Name());
}

}  // namespace test

// routines.cpp: fuzz target: direct calls of the exported routines, as a host makes them, with any sizes that there is
// memory for, and with null pointers. Whatever is touched beside a buffer is a fault.
//
// Input: a byte for the routine, one for null pointers and the side that is fenced, then the arguments.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "fenced.h"
#include "input.h"
#include "kernels/kernels.h"
#include "random.h"
#include "saturate.h"
#include "time_limit.h"
#include "vel_stopngo.h"

namespace {

using test::Fenced;

/// Bytes of a buffer. More cost time, not insight.
constexpr std::uint64_t kLargest = 1U << 14;

/// The arguments of a call.
class Arguments {
 public:
  explicit Arguments(fuzz::Input& input) : input_(input) {
    nulls_ = input.Take<std::uint8_t>();
    side_ = nulls_ % 2 == 0 ? Fenced::Side::kEnd : Fenced::Side::kStart;
    // Seldom, and each pointer by itself.
    if (nulls_ < 0xE0) nulls_ = 0;
  }

  std::uint32_t Size(std::uint32_t usual) { return input_.Size(usual); }
  /// Of an image, or a place in it: what lies further off than any memory reaches is no image.
  std::uint32_t Place(std::uint32_t usual) { return Size(usual) % (1U << 20); }
  template <typename Number>
  Number Any() {
    return input_.Take<Number>();
  }

  /// A buffer of so many bytes with noise; null where the input says so. What cannot be had makes the call unmakable.
  std::uint8_t* Buffer(std::uint64_t bytes) {
    nulls_ >>= 1;
    if (bytes > kLargest) makable_ = false;
    if (!makable_ || nulls_ % 2 != 0) return nullptr;
    buffers_.push_back(std::make_unique<Fenced>(bytes, side_));
    test::Random(bytes).Fill(buffers_.back()->Bytes());
    return buffers_.back()->Data();
  }
  std::int8_t* Signed(std::uint64_t bytes) { return reinterpret_cast<std::int8_t*>(Buffer(bytes)); }
  /// Any bits, infinities and what is no number among them.
  float* Floats(std::uint64_t count) {
    return reinterpret_cast<float*>(Buffer(count > kLargest ? count : count * sizeof(float)));
  }

  [[nodiscard]] bool Makable() const { return makable_; }

 private:
  fuzz::Input& input_;
  std::uint8_t nulls_;
  Fenced::Side side_;
  bool makable_ = true;
  std::vector<std::unique_ptr<Fenced>> buffers_;
};

/// Draws the arguments, and makes the call when it is one that a host could make.
using Routine = void (*)(Arguments& arguments);

// ---- Motion and classifier ----

void BlockMatch(Arguments& a) {
  const std::uint32_t block = a.Size(40);
  const std::uint32_t rows = a.Size(6);
  const std::uint32_t columns = a.Size(8);
  const std::uint32_t width = a.Size(160);
  const std::uint64_t bytes = SaturatingMultiply(SaturatingMultiply(std::uint64_t{rows} + 2, block), width);
  const std::uint64_t vectors = SaturatingMultiply(rows, std::uint64_t{2} * columns);
  if (bytes > kLargest || vectors > kLargest) return;
  const auto* const before = a.Buffer(bytes);
  const auto* const after = a.Buffer(bytes);
  std::int8_t* const vector = a.Signed(vectors);
  Block_Match_TSS_(before, after, vector, block, rows, columns, width);
  if (before == nullptr || after == nullptr || vector == nullptr) return;
  const auto far = [](std::int8_t step) { return step < -kSearchReach || step > kSearchReach; };
  fuzz::Expect(std::none_of(vector, vector + vectors, far), "a vector beyond the search");
}

void LocalHistogram(Arguments& a) {
  const std::uint32_t rows = a.Size(8);
  const std::uint32_t columns = a.Size(40);
  const std::uint64_t cells = std::uint64_t{rows} * columns;
  if (cells > kLargest) return;
  const std::int8_t* const vector = a.Signed(24 * cells);
  std::int8_t* const chunk = a.Signed(4 * cells);
  if (a.Makable()) Block_Local_Histogram_(vector, chunk, rows, columns);
}

void Conversion(Arguments& a) {
  const std::uint32_t length = a.Size(300);
  const std::int8_t* const values = a.Signed(length);
  float* const converted = a.Floats(length);
  if (a.Makable()) Classify_Conversion_(values, converted, length);
}

void Score(Arguments& a) {
  const std::uint32_t inputs = a.Size(180);
  const std::uint32_t hiddens = a.Size(24);
  const float* const features = a.Floats(inputs);
  const std::uint64_t weights = (std::uint64_t{inputs} + 2) * hiddens + 1;
  const float* const weight = a.Floats(weights);
  if (!a.Makable()) return;
  const float score = Classify_Feature_(features, weight, inputs, hiddens);
  const bool none = features == nullptr || weight == nullptr;
  fuzz::Expect(none ? score == 0 : score >= 0.000337958F && score <= 0.999662043F,
               "a score of " + std::to_string(score));
}

// ---- Crops ----

using Rectangle = std::array<std::uint32_t, 4>;

/// What a crop reads, as offsets from where it was told that the image starts, and how much it writes.
struct Extent {
  std::ptrdiff_t first = 0, last = 0;
  std::uint64_t output = 0;
};
std::uint8_t spied_image;
Extent spied;

/// Stands in for the kernel, to learn what a crop would ask it for.
void Spy(const std::uint8_t* input, std::ptrdiff_t row_step, const Pattern& rows, const Pattern& columns,
         std::uint8_t* /*output*/, std::uint32_t height, std::uint32_t width) {
  const std::ptrdiff_t start = input - &spied_image;
  const std::uint64_t output = std::uint64_t{height} * width;
  if (output > kLargest) {
    spied = {0, 0, output};
    return;
  }
  const auto top = static_cast<std::ptrdiff_t>(rows.At(0)) * row_step;
  const auto bottom = static_cast<std::ptrdiff_t>(rows.At(height - 1)) * row_step;
  spied = {start + std::min(top, bottom) + static_cast<std::ptrdiff_t>(columns.At(0)),
           start + std::max(top, bottom) + static_cast<std::ptrdiff_t>(columns.At(width - 1)) + 1, output};
}

/// Makes a crop with the bytes mapped that it samples.
void MakeCrop(Arguments& a,
              const std::function<void(const std::uint8_t* input, std::uint8_t* output)>& crop) {
  KernelTable table = AvailableKernels().front();
  table.Resample = Spy;
  spied = {};
  ForceKernels(&table);
  std::uint8_t unused = 0;
  crop(&spied_image, &unused);
  ForceKernels(nullptr);
  const Extent extent = spied;
  const std::uint8_t* const input = a.Buffer(static_cast<std::uint64_t>(extent.last - extent.first));
  std::uint8_t* const output = a.Buffer(extent.output);
  if (a.Makable()) crop(input == nullptr ? nullptr : input - extent.first, output);
}

Rectangle AnyRectangle(Arguments& a) {
  const std::uint32_t top = a.Place(40);
  const std::uint32_t left = a.Place(40);
  return {top, left, top + a.Place(40), left + a.Place(200)};
}

struct CropSizes {
  explicit CropSizes(Arguments& a)
      : source(AnyRectangle(a)),
        location(AnyRectangle(a)),
        ratio(a.Size(9)),
        flip(a.Any<std::int8_t>()),
        rows(a.Place(200)),
        columns(a.Place(400)) {}
  Rectangle source, location;
  std::uint32_t ratio;
  std::int32_t flip;
  std::uint32_t rows, columns;
};

void Cropping(Arguments& a) {
  const CropSizes s(a);
  MakeCrop(a, [&s](const std::uint8_t* input, std::uint8_t* output) {
    Image_Cropping_(input, output, s.source.data(), s.location.data(), s.ratio, s.flip, s.rows, s.columns);
  });
}

void OriginalCropping(Arguments& a) {
  const CropSizes s(a);
  const std::uint32_t width = a.Any<std::uint8_t>() % 2 == 0 ? 1920 : 1280;
  MakeCrop(a, [&](const std::uint8_t* input, std::uint8_t* output) {
    Image_Original_Cropping_(width, s.rows, input, output, s.source.data(), s.location.data(), s.ratio,
                             s.flip, s.rows, s.columns);
  });
}

template <auto kSubsample>
void Subsampling(Arguments& a) {
  const std::uint32_t rows = a.Place(40);
  const std::uint32_t columns = a.Place(200);
  MakeCrop(
      a, [=](const std::uint8_t* input, std::uint8_t* output) { kSubsample(input, output, rows, columns); });
}

template <auto kCrop>
void Decimation(Arguments& a) {
  const CropSizes s(a);
  MakeCrop(a, [&s](const std::uint8_t* input, std::uint8_t* output) {
    kCrop(input, output, s.location.data(), s.flip, s.rows, s.columns);
  });
}

// ---- Images ----

void Flipping(Arguments& a) {
  const std::uint32_t rows = a.Size(80);
  const std::uint32_t columns = a.Size(300);
  std::uint8_t* const image = a.Buffer(std::uint64_t{rows} * columns);
  std::uint8_t* const buffer = a.Buffer(columns);
  if (a.Makable()) Image_Flipping_(image, buffer, rows, columns);
}

void Marking(Arguments& a) {
  const Rectangle location = AnyRectangle(a);
  const std::uint32_t columns = a.Size(300);
  const bool empty = location[2] <= location[0] || location[3] <= location[1];
  const std::uint64_t width = empty ? 0 : location[3] - location[1];
  const std::uint64_t height = empty ? 0 : location[2] - location[0];
  if (width > kLargest || height > kLargest || columns > kLargest || location[2] > kLargest) return;
  std::uint8_t* const image = a.Buffer(empty ? 0 : (std::uint64_t{location[2]} - 1) * columns + location[3]);
  const std::uint8_t* const mark = a.Buffer(width * height);
  if (a.Makable()) Image_Marking_(image, mark, location.data(), columns);
}

void MedianInPlace(Arguments& a) {
  const auto skip = static_cast<int>(a.Size(8));
  const std::uint32_t width = a.Size(200);
  const std::uint32_t height = a.Size(60);
  std::uint8_t* const image = a.Buffer(std::uint64_t{width} * height);
  if (a.Makable()) image_median_filter(image, skip, width, height);
}

void GaussianInPlace(Arguments& a) {
  const std::uint32_t skip = a.Size(8);
  const std::uint32_t width = a.Size(200);
  const std::uint32_t height = a.Size(60);
  std::uint8_t* const image = a.Buffer(std::uint64_t{width} * height);
  if (a.Makable()) image_gaussian_blur_filter(image, skip, width, height);
}

void MedianSeparate(Arguments& a) {
  const auto rows = static_cast<int>(a.Size(60));
  const auto columns = static_cast<int>(a.Size(200));
  const std::uint64_t bytes = rows > 0 && columns > 0 ? static_cast<std::uint64_t>(rows) * columns : 0;
  const std::uint8_t* const image = a.Buffer(bytes);
  std::uint8_t* const filtered = a.Buffer(bytes);
  if (a.Makable()) median_filter(image, rows, columns, filtered);
}

/// The values are those of the input: partitions go by them.
void Sort(Arguments& a) {
  const std::uint32_t count = a.Size(120);
  std::uint8_t* const values = a.Buffer(count);
  if (!a.Makable()) return;
  for (std::uint32_t i = 0; values != nullptr && i < count; ++i) values[i] = a.Any<std::uint8_t>();
  std::vector<std::uint8_t> sorted(values, values == nullptr ? nullptr : values + count);
  std::ranges::sort(sorted);
  pixel_qsort(values, static_cast<int>(count));
  fuzz::Expect(values == nullptr || std::equal(sorted.begin(), sorted.end(), values), "not sorted");
}

constexpr Routine kRoutines[] = {
    BlockMatch,
    LocalHistogram,
    Conversion,
    Score,
    Cropping,
    OriginalCropping,
    Subsampling<Image_Subsampling_2_>,
    Subsampling<Image_Subsampling_3_>,
    Decimation<Image_Cropping_2_>,
    Decimation<Image_ROI_2_>,
    Decimation<Image_ROI_3_>,
    Flipping,
    Marking,
    MedianInPlace,
    GaussianInPlace,
    MedianSeparate,
    Sort,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const Routine routine = kRoutines[input.Below(std::size(kRoutines))];
  Arguments arguments(input);
  const fuzz::TimeLimit limit("a routine", kLargest);
  routine(arguments);
  return 0;
}

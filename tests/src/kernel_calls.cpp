// kernel_calls.cpp: random pictures, and random calls of every kernel but the crops.
#include "kernel_calls.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "moving_picture.h"

namespace test {
namespace {

std::string Sizes(std::initializer_list<std::pair<const char*, std::int64_t>> sizes) {
  std::string text;
  for (const auto& [name, value] : sizes) text += std::string(name) + " " + std::to_string(value) + " ";
  return text;
}

void Append(Pixels& all, const Fenced& memory) {
  all.insert(all.end(), memory.Bytes().begin(), memory.Bytes().end());
}

Pixels Noise(Random& random, std::size_t length) {
  Pixels pixels(length);
  random.Fill(pixels);
  return pixels;
}

/// Noise narrowed to a few values: those that Value makes of a random byte.
template <typename Value>
Pixels Mapped(Random& random, std::size_t length, Value value) {
  Pixels pixels = Noise(random, length);
  for (std::uint8_t& pixel : pixels) pixel = static_cast<std::uint8_t>(value(pixel));
  return pixels;
}

Pixels Stripes(Random& random, std::size_t width, std::size_t length) {
  const std::size_t across = 1 + random.Below(4);
  const std::size_t down = 1 + random.Below(4);
  Pixels pixels(length);
  for (std::size_t i = 0; i < length; ++i) {
    pixels[i] = (i % width / across + i / width / down) % 2 == 0 ? 40 : 200;
  }
  return pixels;
}

PicturePair Moved(Random& random, Content content, std::size_t width, std::size_t length) {
  MovingPicture picture(static_cast<int>(width), static_cast<int>((length + width - 1) / width),
                        random.Next());
  PicturePair pair{.content = content, .before = picture.Next(), .after = {}};
  pair.after = content == Content::kStill ? pair.before : picture.Next();
  pair.before.resize(length);
  pair.after.resize(length);
  if (content == Content::kStill) {
    // The noise of a camera.
    for (std::uint8_t& pixel : pair.after) pixel = static_cast<std::uint8_t>(pixel ^ random.Below(4));
  }
  return pair;
}

}  // namespace

std::string PicturePair::Name() const {
  constexpr const char* kNames[] = {"noise", "flat", "moved", "still", "extremes", "ties", "stripes"};
  return kNames[static_cast<int>(content)];
}

PicturePair DrawPictures(Random& random, std::size_t width, std::size_t length) {
  const auto content = static_cast<Content>(random.Below(static_cast<int>(Content::kStripes) + 1));
  switch (content) {
    case Content::kNoise:
      return {content, Noise(random, length), Noise(random, length)};
    case Content::kFlat: {
      const auto level = static_cast<std::uint8_t>(random.Next());
      return {content, Pixels(length, level), Pixels(length, level)};
    }
    case Content::kMoved:
    case Content::kStill:
      return Moved(random, content, width, length);
    case Content::kExtremes: {
      const auto extreme = [](int noise) { return noise % 2 * 255; };
      // One picture all dark against one all bright gives the largest sums.
      if (random.Below(4) == 0) return {content, Pixels(length, 0), Pixels(length, 255)};
      return {content, Mapped(random, length, extreme), Mapped(random, length, extreme)};
    }
    case Content::kTies: {
      const auto one_of_two = [](int noise) { return 100 + (noise < 30 ? 1 : 0); };
      return {content, Mapped(random, length, one_of_two), Mapped(random, length, one_of_two)};
    }
    case Content::kStripes:
      break;
  }
  const Pixels stripes = Stripes(random, width, length);
  return {content, stripes, random.Below(2) == 0 ? stripes : Stripes(random, width, length)};
}

std::uint32_t DrawSize(Random& random, std::uint32_t most) {
  constexpr std::uint32_t kAwkward[] = {1,  2,  3,  5,  7,  13, 15, 16, 17,  19,  31,  32, 33,
                                        37, 47, 61, 63, 64, 65, 79, 97, 127, 128, 129, 211};
  const std::uint32_t awkward = kAwkward[random.Below(std::size(kAwkward))];
  return random.Below(2) == 0 && awkward <= most ? awkward : 1 + random.Below(most);
}

namespace {

// ---- Block matching ----

struct BlockGeometry {
  std::uint32_t size, rows, columns, width;
};

BlockGeometry DrawBlockGeometry(Random& random) {
  BlockGeometry g{10, random.Below(5), random.Below(9), 0};
  switch (random.Below(8)) {
    case 0:  // the default
      return {10, 12, 20, 220};
    case 1:  // sums beyond 2^31 in the extremes start at 182
      g = {176 + random.Below(20), 1, 1 + random.Below(2), 0};
      break;
    case 2:
      g.size = 1 + random.Below(33);
      break;
    case 3:
      g = {33 + random.Below(60), 1 + random.Below(2), 1 + random.Below(3), 0};
      break;
    default:
      break;
  }
  // Positions are linear: rows may be shorter than the blocks reach.
  const std::uint32_t reach = g.size * (g.columns + 2);
  g.width = random.Below(4) == 0 ? DrawSize(random, reach) : reach + random.Below(20);
  return g;
}

Call DrawMatchBlocks(Random& random) {
  const BlockGeometry g = DrawBlockGeometry(random);
  const std::size_t runs = (g.size + 7) / 8 * 8;
  const std::size_t reach = kSearchReach * (std::size_t{g.width} + 1);
  const std::size_t first = std::size_t{g.size} * (g.width + 1);
  const std::size_t last = g.rows * std::size_t{g.size} * g.width + std::size_t{g.columns} * g.size;
  const bool any = g.rows > 0 && g.columns > 0;
  // The bytes of all blocks, as offsets from the image; the search sees reach more on both sides.
  const std::size_t length = any ? last - first + (g.size - 1) * std::size_t{g.width} + runs : 0;
  const auto pair =
      std::make_shared<PicturePair>(DrawPictures(random, g.width, any ? length + 2 * reach : 0));
  const auto make = [=](const KernelTable& table, Fenced::Side side) {
    const std::span<const std::uint8_t> after(pair->after);
    const Fenced before(pair->before, side);
    const Fenced current(any ? after.subspan(reach, length) : after, side);
    const Fenced vectors(Pixels(std::size_t{2} * g.rows * g.columns, 0x55), side);
    table.MatchBlocks(before.Data() + reach - first, current.Data() - first,
                      reinterpret_cast<std::int8_t*>(vectors.Data()), g.size, g.rows, g.columns, g.width);
    return Pixels(vectors.Bytes().begin(), vectors.Bytes().end());
  };
  return {Sizes({{"blocks of", g.size}, {"rows", g.rows}, {"columns", g.columns}, {"width", g.width}}) +
              pair->Name(),
          make};
}

// ---- Histogram and perceptron ----

Call DrawSumDirections(Random& random) {
  const bool usual = random.Below(4) == 0;
  const std::uint32_t rows = usual ? 4 : random.Below(7);
  const std::uint32_t columns = usual ? 5 : random.Below(40);
  const std::size_t cells = std::size_t{rows} * columns;
  const auto vectors = std::make_shared<Pixels>(
      random.Below(2) == 0 ? Noise(random, 24 * cells)
                           : Mapped(random, 24 * cells, [](int noise) { return noise % 15 - 7; }));
  return {Sizes({{"rows", rows}, {"columns", columns}}), [=](const KernelTable& table, Fenced::Side side) {
            const Fenced input(*vectors, side);
            const Fenced chunk(Pixels(4 * cells, 0x55), side);
            table.SumDirections(reinterpret_cast<const std::int8_t*>(input.Data()),
                                reinterpret_cast<std::int8_t*>(chunk.Data()), rows, columns);
            return Pixels(chunk.Bytes().begin(), chunk.Bytes().end());
          }};
}

Call DrawConvert(Random& random) {
  const std::uint32_t length = random.Below(8) == 0 ? 0 : DrawSize(random, 300);
  const auto values = std::make_shared<Pixels>(Noise(random, length));
  return {Sizes({{"length", length}}), [=](const KernelTable& table, Fenced::Side side) {
            const Fenced input(*values, side);
            const Fenced output(length * sizeof(float), side);
            table.Convert(reinterpret_cast<const std::int8_t*>(input.Data()),
                          reinterpret_cast<float*>(output.Data()), length);
            return Pixels(output.Bytes().begin(), output.Bytes().end());
          }};
}

struct Network {
  std::uint32_t inputs, hiddens;
  std::vector<float> features, weights;
};

/// Large products that cancel: the second half of the inputs takes off what the first half gave, and the
/// second half of the nodes what the first half did. What is left is rounding, several table steps of it,
/// so that a sum in another order or with fused steps gives another score.
void MakeCancelling(Network& network) {
  const std::uint32_t inputs = network.inputs;
  const std::uint32_t hiddens = network.hiddens;
  float* const nodes = network.weights.data();
  float* const output = nodes + std::size_t{inputs + 1} * hiddens;
  for (std::uint32_t i = 0; i < inputs / 2; ++i) network.features[inputs - 1 - i] = network.features[i];
  for (std::uint32_t node = 0; node < hiddens; ++node) {
    float* const row = nodes + std::size_t{node} * inputs;
    for (std::uint32_t i = 0; i < inputs; ++i) row[i] *= 32768.0F;
    for (std::uint32_t i = 0; i < inputs / 2; ++i) row[inputs - 1 - i] = -row[i];
    if (inputs % 2 == 1) row[inputs / 2] /= 32768.0F;
    output[node] *= 8192.0F;
  }
  for (std::uint32_t node = 0; node < hiddens / 2; ++node) {
    const std::uint32_t twin = hiddens - 1 - node;
    std::copy_n(nodes + std::size_t{node} * inputs, inputs, nodes + std::size_t{twin} * inputs);
    nodes[std::size_t{inputs} * hiddens + twin] = nodes[std::size_t{inputs} * hiddens + node];
    output[twin] = -output[node];
  }
  if (hiddens % 2 == 1) output[hiddens / 2] /= 8192.0F;
}

Network DrawNetwork(Random& random) {
  const bool usual = random.Below(3) == 0;
  Network network{usual ? 160 : random.Below(180), usual ? 16 : random.Below(40), {}, {}};
  network.features.resize(network.inputs);
  network.weights.resize(std::size_t{network.inputs + 2} * network.hiddens + 1);
  for (float& feature : network.features) feature = random.Signed();
  for (float& weight : network.weights) weight = random.Signed();
  switch (random.Below(4)) {
    case 0: {  // what a damaged weights file can hold
      constexpr float kOdd[] = {
          std::numeric_limits<float>::infinity(),  -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::denorm_min(),
          std::numeric_limits<float>::max(),       -0.0F};
      for (int i = 0; i < 8; ++i) {
        network.weights[random.Below(static_cast<std::uint32_t>(network.weights.size()))] =
            kOdd[random.Below(std::size(kOdd))];
      }
      break;
    }
    case 1:  // sums on both sides of the table's ends
      for (float& weight : network.weights) weight *= 2;
      break;
    default:
      MakeCancelling(network);
      break;
  }
  return network;
}

std::span<const std::uint8_t> AsBytes(const std::vector<float>& values) {
  return {reinterpret_cast<const std::uint8_t*>(values.data()), values.size() * sizeof(float)};
}

Call DrawScore(Random& random) {
  const auto network = std::make_shared<Network>(DrawNetwork(random));
  return {Sizes({{"inputs", network->inputs}, {"hidden", network->hiddens}}),
          [=](const KernelTable& table, Fenced::Side side) {
            const Fenced features(AsBytes(network->features), side);
            const Fenced weights(AsBytes(network->weights), side);
            const float score = table.Score(reinterpret_cast<const float*>(features.Data()),
                                            reinterpret_cast<const float*>(weights.Data()), network->inputs,
                                            network->hiddens);
            Pixels bits(sizeof score);
            std::memcpy(bits.data(), &score, sizeof score);
            return bits;
          }};
}

// ---- Filters ----

using Filter = void (*)(const KernelTable& table, std::uint8_t* image, std::uint32_t border,
                        std::uint32_t width, std::uint32_t height);

/// A filter in place, on an image that its border leaves at least one pixel of.
Call DrawInPlace(Random& random, std::uint32_t least_border, Filter filter) {
  const std::uint32_t border = least_border + (random.Below(4) == 0 ? random.Below(9) : 0);
  const bool usual = random.Below(20) == 0;
  const std::uint32_t width = usual ? 220 : 2 * border + DrawSize(random, 230);
  const std::uint32_t height = usual ? 140 : 2 * border + DrawSize(random, 70);
  const auto pair = std::make_shared<PicturePair>(DrawPictures(random, width, std::size_t{width} * height));
  return {Sizes({{"border", border}, {"width", width}, {"height", height}}) + pair->Name(),
          [=](const KernelTable& table, Fenced::Side side) {
            const Fenced image(pair->before, side);
            filter(table, image.Data(), border, width, height);
            return Pixels(image.Bytes().begin(), image.Bytes().end());
          }};
}

Call DrawMedianInPlace(Random& random) {
  return DrawInPlace(random, 1, [](const KernelTable& table, std::uint8_t* image, auto... sizes) {
    table.MedianInPlace(image, sizes...);
  });
}

Call DrawGaussianInPlace(Random& random) {
  return DrawInPlace(random, 2, [](const KernelTable& table, std::uint8_t* image, auto... sizes) {
    table.GaussianInPlace(image, sizes...);
  });
}

Call DrawMedianSeparate(Random& random) {
  const auto rows = static_cast<int>(2 + DrawSize(random, 70));
  const auto columns = static_cast<int>(2 + DrawSize(random, 230));
  const std::size_t length = static_cast<std::size_t>(rows) * columns;
  const auto pair = std::make_shared<PicturePair>(DrawPictures(random, columns, length));
  return {Sizes({{"rows", rows}, {"columns", columns}}) + pair->Name(),
          [=](const KernelTable& table, Fenced::Side side) {
            const Fenced image(pair->before, side);
            const Fenced filtered(Pixels(length, 0x55), side);
            table.MedianSeparate(image.Data(), rows, columns, filtered.Data());
            return Pixels(filtered.Bytes().begin(), filtered.Bytes().end());
          }};
}

// ---- Rows ----

Call DrawMarkRows(Random& random) {
  const std::uint32_t width = random.Below(8) == 0 ? 0 : DrawSize(random, 300);
  const std::uint32_t height = random.Below(4);
  const std::uint32_t end = width + (random.Below(2) == 0 ? 0 : random.Below(100));
  const std::size_t marked = std::size_t{height} * width;
  const std::size_t length = height == 0 ? 0 : (std::size_t{height} - 1) * end + width;
  // Image and mark lie in one buffer, up to a few vectors apart, or in two.
  const bool apart = random.Below(2) == 0;
  const std::uint32_t shift = random.Below(2) == 0 ? random.Below(8) : random.Below(140);
  const bool mark_first = random.Below(2) == 0;
  const auto bytes = std::make_shared<Pixels>(Noise(random, length + (apart ? marked : shift)));
  return {Sizes({{"height", height},
                 {"width", width},
                 {"end", end},
                 {apart        ? "apart"
                  : mark_first ? "mark before by"
                               : "mark after by",
                  shift}}),
          [=](const KernelTable& table, Fenced::Side side) {
            const std::span<const std::uint8_t> all(*bytes);
            const Fenced image(apart ? all.first(length) : all, side);
            const Fenced mark(apart ? all.last(marked) : all.first(0), side);
            const std::uint32_t image_at = apart || !mark_first ? 0 : shift;
            const std::uint8_t* marks = apart ? mark.Data() : image.Data() + (mark_first ? 0 : shift);
            table.MarkRows(image.Data() + image_at, marks, height, width, end);
            return Pixels(image.Bytes().begin(), image.Bytes().end());
          }};
}

Call DrawExchangeRows(Random& random) {
  const std::uint32_t width = random.Below(8) == 0 ? 0 : DrawSize(random, 900);
  const auto bytes = std::make_shared<Pixels>(Noise(random, std::size_t{2} * width));
  return {Sizes({{"width", width}}), [=](const KernelTable& table, Fenced::Side side) {
            const std::span<const std::uint8_t> all(*bytes);
            const Fenced first(all.first(width), side);
            const Fenced second(all.last(width), side);
            const Fenced buffer(width, side);
            table.ExchangeRows(first.Data(), second.Data(), buffer.Data(), width);
            Pixels rows;
            Append(rows, first);
            Append(rows, second);
            return rows;
          }};
}

#define STOPNGO_CALLS(Draw, Form, Contract) {#Form, Draw##Form},

constexpr KernelCalls kCalls[] = {
    STOPNGO_KERNELS(STOPNGO_CALLS, Draw)
    // The exported crops choose among patterns of their own, and decimate in place.
    {"resample_in_place", DrawDecimationInPlace},
    {"cropping", DrawCropping},
    {"original_cropping", DrawOriginalCropping},
    {"decimation", DrawDecimation},
};

#undef STOPNGO_CALLS

}  // namespace

std::span<const KernelCalls> AllKernelCalls() { return kCalls; }

}  // namespace test

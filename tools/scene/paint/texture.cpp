// texture.cpp: painting a texture and summing it up.
#include "scene/paint/texture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "scene/paint/noise.h"

namespace stopngo {
namespace {

Texel Mix(const Texel& a, const Texel& b, double share) { return a + share * (b - a); }

double HalfWidth(std::span<const OutlinePoint> outline, double height) {
  for (std::size_t i = 1; i < outline.size(); i++) {
    const OutlinePoint& below = outline[i - 1];
    const OutlinePoint& above = outline[i];
    if (height >= below.height && height < above.height) {
      const double share = (height - below.height) / (above.height - below.height);
      return below.half_width + (above.half_width - below.half_width) * share;
    }
  }
  return -1;
}

}  // namespace

Texture::Texture(double half_width, double height, double texels_per_metre)
    : per_metre_(texels_per_metre),
      columns_(static_cast<std::size_t>(std::ceil(2 * half_width * texels_per_metre))),
      rows_(static_cast<std::size_t>(std::ceil(height * texels_per_metre))),
      texels_(columns_ * rows_) {}

void Texture::Blend(std::size_t row, std::size_t column, double tone, double alpha, double lamp) {
  Texel& texel = texels_[row * columns_ + column];
  texel = Mix(texel, {tone, 1, lamp}, alpha);
}

void Texture::Fill(std::span<const OutlinePoint> outline, double tone_bottom, double tone_top) {
  const double low = outline.front().height;
  const double span = outline.back().height - low;
  for (std::size_t row = 0; row < rows_; row++) {
    const double height = (static_cast<double>(row) + 0.5) / per_metre_;
    const double half_width = HalfWidth(outline, height);
    const double tone = tone_bottom + (tone_top - tone_bottom) * (height - low) / span;
    for (std::size_t column = 0; column < columns_; column++) {
      const double x = std::fabs(static_cast<double>(column) + 0.5 - Centre());
      Blend(row, column, tone, std::clamp(half_width * per_metre_ - x + 0.5, 0.0, 1.0), 0);
    }
  }
}

void Texture::FillPolygon(std::span<const PaintPoint> corners, double tone_bottom, double tone_top) {
  constexpr int kSlices = 4;  // of a row of texels: their edges are smooth across rows, and exact along them
  const double span = static_cast<double>(rows_) / per_metre_;
  std::vector<double> crossings;
  std::vector<double> cover(columns_);
  for (std::size_t row = 0; row < rows_; row++) {
    std::fill(cover.begin(), cover.end(), 0.0);
    for (int slice = 0; slice < kSlices; slice++) {
      const double height = (static_cast<double>(row) + (slice + 0.5) / kSlices) / per_metre_;
      crossings.clear();
      for (std::size_t i = 0; i < corners.size(); i++) {
        const PaintPoint& a = corners[i];
        const PaintPoint& b = corners[(i + 1) % corners.size()];
        if ((a.height <= height) != (b.height <= height)) {
          const double share = (height - a.height) / (b.height - a.height);
          crossings.push_back((a.across + share * (b.across - a.across)) * per_metre_ + Centre());
        }
      }
      std::sort(crossings.begin(), crossings.end());
      for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        const double left = std::clamp(crossings[i], 0.0, Columns());
        const double right = std::clamp(crossings[i + 1], 0.0, Columns());
        for (auto column = static_cast<std::size_t>(left); static_cast<double>(column) < right; column++) {
          const auto x = static_cast<double>(column);
          cover[column] += (std::min(right, x + 1) - std::max(left, x)) / kSlices;
        }
      }
    }
    const double height = (static_cast<double>(row) + 0.5) / per_metre_;
    const double tone = tone_bottom + (tone_top - tone_bottom) * height / span;
    for (std::size_t column = 0; column < columns_; column++) {
      Blend(row, column, tone, cover[column], 0);
    }
  }
}

void Texture::Paint(const Shape& shape) {
  PaintOne(shape, shape.centre);
  if (shape.centre != 0) {
    PaintOne(shape, -shape.centre);
  }
}

void Texture::PaintOne(const Shape& shape, double centre) {
  const auto index = [this](double metres, std::size_t limit) {
    return static_cast<std::size_t>(std::clamp(metres * per_metre_, 0.0, static_cast<double>(limit)));
  };
  const double middle = 0.5 * (shape.low + shape.high);
  const double half_height = 0.5 * (shape.high - shape.low);
  const double margin = 1 / per_metre_;
  const double origin = Centre() / per_metre_;
  const double reach = std::max(shape.half_bottom, shape.half_top) + margin;
  for (std::size_t row = index(shape.low - margin, rows_); row < index(shape.high + 2 * margin, rows_);
       row++) {
    const double height = (static_cast<double>(row) + 0.5) / per_metre_;
    const double share = std::clamp((height - shape.low) / (2 * half_height), 0.0, 1.0);
    const double half_width = shape.half_bottom + (shape.half_top - shape.half_bottom) * share;
    const double tone = shape.tone_bottom + (shape.tone_top - shape.tone_bottom) * share;
    const double dy = std::fabs(height - middle) - half_height + shape.radius;
    const std::size_t end = index(origin + centre + reach + margin, columns_);
    for (std::size_t column = index(origin + centre - reach, columns_); column < end; column++) {
      const double x = (static_cast<double>(column) + 0.5 - Centre()) / per_metre_;
      const double dx = std::fabs(x - centre) - half_width + shape.radius;
      const double ox = std::max(dx, 0.0);
      const double oy = std::max(dy, 0.0);
      const double outside = std::sqrt(ox * ox + oy * oy) + std::min(std::max(dx, dy), 0.0) - shape.radius;
      const double alpha = std::clamp(0.5 - outside * per_metre_, 0.0, 1.0) * shape.opacity;
      if (alpha > 0) {
        Blend(row, column, tone, alpha, shape.lamp);
      }
    }
  }
}

void Texture::Roughen(double amplitude, std::uint32_t seed) {
  for (std::size_t row = 0; row < rows_; row++) {
    for (std::size_t column = 0; column < columns_; column++) {
      Texel& texel = texels_[row * columns_ + column];
      const auto x = static_cast<float>(static_cast<double>(column) / per_metre_);
      const auto y = static_cast<float>(static_cast<double>(row) / per_metre_);
      // Wavelengths of 50 cm (reflections of the surroundings), 7 cm (dirt) and 2 cm (splashes).
      const float noise = ValueNoise(x * 2, y * 4, seed) + 0.6F * ValueNoise(x * 14, y * 14, seed + 1) +
                          0.5F * ValueNoise(x * 50, y * 50, seed + 2);
      // Dark paint is not made darker than no light at all.
      texel.tone = std::max(0.0, texel.tone + amplitude * static_cast<double>(noise) * texel.cover);
    }
  }
}

void Texture::Seal() {
  const std::size_t stride = columns_ + 1;
  std::vector<Texel> sums(stride * (rows_ + 1));
  for (std::size_t row = 0; row < rows_; row++) {
    Texel line;
    for (std::size_t column = 0; column < columns_; column++) {
      const Texel& texel = texels_[row * columns_ + column];
      line = line + texel;
      sums[(row + 1) * stride + column + 1] = sums[row * stride + column + 1] + line;
    }
  }
  texels_ = std::move(sums);
}

Texture::Edge::Edge(double place, std::size_t count) {
  const double inside = std::clamp(place, 0.0, static_cast<double>(count));
  whole = std::min(static_cast<std::size_t>(inside), count - 1);
  share = inside - static_cast<double>(whole);
}

void Texture::SumRows(double low, double high, double left, double right, std::vector<Texel>& sums) const {
  const std::size_t stride = columns_ + 1;
  const Edge below(low, rows_);
  const Edge above(high, rows_);
  const Texel* bottom = Line(below);
  const Texel* top = Line(above);
  sums.resize(stride);
  // SumColumns looks at the columns around a place, and at the last two at the right edge.
  const auto first = std::min(static_cast<std::size_t>(std::clamp(left, 0.0, Columns())), columns_ - 1);
  const auto last = std::min(static_cast<std::size_t>(std::clamp(right, 0.0, Columns())) + 1, columns_);
  for (std::size_t i = first; i <= last; i++) {
    const Texel from = Mix(bottom[i], bottom[i + stride], below.share);
    const Texel to = Mix(top[i], top[i + stride], above.share);
    sums[i] = to - from;
  }
}

Texel Texture::Strip::Below(double row) const {
  const Edge edge(row, texture_.rows_);
  const Texel* lower = texture_.Line(edge);
  const Texel* upper = lower + texture_.columns_ + 1;
  const auto line = [this](const Texel* sums) {
    return Mix(sums[right_.whole], sums[right_.whole + 1], right_.share) -
           Mix(sums[left_.whole], sums[left_.whole + 1], left_.share);
  };
  return Mix(line(lower), line(upper), edge.share);
}

Texel Texture::SumColumns(const std::vector<Texel>& sums, double column) {
  const Edge edge(column, sums.size() - 1);
  return Mix(sums[edge.whole], sums[edge.whole + 1], edge.share);
}

}  // namespace stopngo

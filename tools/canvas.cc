#include "tools/canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace tidewell::tools {
namespace {

double DistanceToSegment(Point p, Point a, Point b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double length2 = dx * dx + dy * dy;
  double t = length2 == 0 ? 0 : ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2;
  t = std::clamp(t, 0.0, 1.0);
  return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

// Angle of (dx, dy) in degrees with y pointing down on screen, in [0, 360).
double ScreenAngle(double dx, double dy) {
  double degrees = std::atan2(-dy, dx) * 180.0 / std::numbers::pi;
  return degrees < 0 ? degrees + 360.0 : degrees;
}

Point OnCircle(Point centre, double radius, double degrees) {
  const double radians = degrees * std::numbers::pi / 180.0;
  return {centre.x + radius * std::cos(radians), centre.y - radius * std::sin(radians)};
}

std::uint8_t Channel(double value) {
  return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

}  // namespace

Shape Disc(double cx, double cy, double radius) {
  return [=](double x, double y) { return std::hypot(x - cx, y - cy) <= radius; };
}

Shape Ring(double cx, double cy, double outer, double inner) {
  return [=](double x, double y) {
    const double d = std::hypot(x - cx, y - cy);
    return d <= outer && d >= inner;
  };
}

Shape Rect(double x0, double y0, double x1, double y1) {
  return [=](double x, double y) { return x >= x0 && x <= x1 && y >= y0 && y <= y1; };
}

Shape RoundRect(double x0, double y0, double x1, double y1, double radius) {
  return [=](double x, double y) {
    if (x < x0 || x > x1 || y < y0 || y > y1) return false;
    const double cx = std::clamp(x, x0 + radius, x1 - radius);
    const double cy = std::clamp(y, y0 + radius, y1 - radius);
    return std::hypot(x - cx, y - cy) <= radius;
  };
}

Shape Polygon(std::vector<Point> corners) {
  return [corners = std::move(corners)](double x, double y) {
    // Even-odd rule: count the edges that a ray to the right crosses.
    bool inside = false;
    for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
      const Point& a = corners[i];
      const Point& b = corners[j];
      if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) {
        inside = !inside;
      }
    }
    return inside;
  };
}

Shape Segment(Point a, Point b, double half_width) {
  return [=](double x, double y) { return DistanceToSegment({x, y}, a, b) <= half_width; };
}

Shape Arc(Point centre, double radius, double from_degrees, double to_degrees, double half_width) {
  const double sweep = to_degrees - from_degrees;
  const Point start = OnCircle(centre, radius, from_degrees);
  const Point end = OnCircle(centre, radius, to_degrees);
  return [=](double x, double y) {
    const double dx = x - centre.x, dy = y - centre.y;
    double offset = ScreenAngle(dx, dy) - from_degrees;
    offset -= 360.0 * std::floor(offset / 360.0);
    if (offset <= sweep && std::abs(std::hypot(dx, dy) - radius) <= half_width) return true;
    return std::hypot(x - start.x, y - start.y) <= half_width ||
           std::hypot(x - end.x, y - end.y) <= half_width;
  };
}

Shape Union(std::vector<Shape> parts) {
  return [parts = std::move(parts)](double x, double y) {
    return std::any_of(parts.begin(), parts.end(), [&](const Shape& s) { return s(x, y); });
  };
}

Shape Minus(Shape base, Shape cut) {
  return [=](double x, double y) { return base(x, y) && !cut(x, y); };
}

Canvas::Canvas(int width, int height)
    : width_(width), height_(height), pixels_(static_cast<std::size_t>(width) * height) {}

void Canvas::Paint(int x, int y, Rgb colour, double coverage) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_ || coverage <= 0) return;
  Pixel& p = pixels_[static_cast<std::size_t>(y) * width_ + x];
  const double a = coverage + p.a * (1 - coverage);
  const double keep = p.a * (1 - coverage);
  p.r = (colour.r * coverage + p.r * keep) / a;
  p.g = (colour.g * coverage + p.g * keep) / a;
  p.b = (colour.b * coverage + p.b * keep) / a;
  p.a = a;
}

void Canvas::Fill(const Shape& shape, Rgb colour, int samples) {
  const double step = 1.0 / samples;
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      int hits = 0;
      for (int sy = 0; sy < samples; ++sy) {
        for (int sx = 0; sx < samples; ++sx) {
          hits += shape(x + (sx + 0.5) * step, y + (sy + 0.5) * step) ? 1 : 0;
        }
      }
      Paint(x, y, colour, static_cast<double>(hits) / (samples * samples));
    }
  }
}

void Canvas::FillRect(int x, int y, int w, int h, Rgb colour) {
  for (int row = y; row < y + h; ++row) {
    for (int column = x; column < x + w; ++column) Paint(column, row, colour, 1.0);
  }
}

void Canvas::Set(int x, int y, Rgb colour) {
  Paint(x, y, colour, 1.0);
}

IndexedImage Canvas::ToIndexed(Rgb matte) const {
  IndexedImage image;
  image.width = width_;
  image.height = height_;
  const bool any_clear =
      std::any_of(pixels_.begin(), pixels_.end(), [](const Pixel& p) { return p.a <= 0; });
  if (any_clear) {
    // The transparent entry carries the matte, so viewers that ignore transparency show the
    // colour the image was made for.
    image.palette.push_back(matte);
    image.transparent = 0;
  }
  for (const Pixel& p : pixels_) {
    if (p.a <= 0) {
      image.pixels.push_back(0);
      continue;
    }
    const Rgb colour{Channel(p.r * p.a + matte.r * (1 - p.a)),
                     Channel(p.g * p.a + matte.g * (1 - p.a)),
                     Channel(p.b * p.a + matte.b * (1 - p.a))};
    const auto start = image.palette.begin() + (any_clear ? 1 : 0);
    auto found = std::find(start, image.palette.end(), colour);
    if (found == image.palette.end()) {
      if (image.palette.size() == 256) throw std::runtime_error("image needs over 256 colours");
      image.palette.push_back(colour);
      found = image.palette.end() - 1;
    }
    image.pixels.push_back(static_cast<std::uint8_t>(found - image.palette.begin()));
  }
  return image;
}

Rgb Hex(unsigned value) {
  return {static_cast<std::uint8_t>((value >> 16) & 0xFF),
          static_cast<std::uint8_t>((value >> 8) & 0xFF), static_cast<std::uint8_t>(value & 0xFF)};
}

Rgb Mix(Rgb a, Rgb b, double t) {
  return {Channel(a.r + (b.r - a.r) * t), Channel(a.g + (b.g - a.g) * t),
          Channel(a.b + (b.b - a.b) * t)};
}

}  // namespace tidewell::tools

#pragma once

#include <functional>
#include <vector>

#include "tools/gif_codec.h"

namespace tidewell::tools {

// A region of the plane in pixel coordinates: pixel (x, y) covers [x, x+1) × [y, y+1).
using Shape = std::function<bool(double x, double y)>;

struct Point {
  double x = 0, y = 0;
};

Shape Disc(double cx, double cy, double radius);
Shape Ring(double cx, double cy, double outer, double inner);
Shape Rect(double x0, double y0, double x1, double y1);
// A rectangle whose four corners are rounded with `radius`.
Shape RoundRect(double x0, double y0, double x1, double y1, double radius);
Shape Polygon(std::vector<Point> corners);
// A stroke of width 2 × `half_width` along a segment, with round ends.
Shape Segment(Point a, Point b, double half_width);
// A stroke along the circle arc from `from_degrees` to `to_degrees`, counter-clockwise on
// screen (y grows downward, 0 degrees points right, 90 up), with round ends.
Shape Arc(Point centre, double radius, double from_degrees, double to_degrees, double half_width);
Shape Union(std::vector<Shape> parts);
Shape Minus(Shape base, Shape cut);

// A drawing surface with coverage per pixel. Shapes are painted over what is there; pixels
// never painted stay transparent in the exported image.
class Canvas {
 public:
  Canvas(int width, int height);

  int width() const { return width_; }
  int height() const { return height_; }

  // Paints `colour` where `shape` holds. Each pixel is sampled on a `samples` × `samples`
  // grid and painted with the share of samples that hit: 1 gives crisp pixel art, 4 gives
  // smooth edges.
  void Fill(const Shape& shape, Rgb colour, int samples = 1);
  void FillRect(int x, int y, int w, int h, Rgb colour);
  void Set(int x, int y, Rgb colour);

  // A palette image of the canvas. Pixels partly covered are blended with `matte`, the colour
  // the image is meant to sit on; pixels never covered become the transparent index.
  IndexedImage ToIndexed(Rgb matte) const;

 private:
  struct Pixel {
    double r = 0, g = 0, b = 0, a = 0;
  };
  void Paint(int x, int y, Rgb colour, double coverage);

  int width_;
  int height_;
  std::vector<Pixel> pixels_;
};

Rgb Hex(unsigned value);
// The colour `t` of the way from `a` to `b`.
Rgb Mix(Rgb a, Rgb b, double t);

}  // namespace tidewell::tools

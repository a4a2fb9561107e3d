// The product logo (270×103) above the login form: a calendar sheet with a tide running
// through it, the name "Tidewell" and the line "group calendar". The login and welcome
// screens show it in a white cell, so its edges are smoothed against white and the ground
// is left transparent. The sheet alone, at 32×32, is the icon browsers show on the page's tab.

#include <cmath>
#include <numbers>

#include "tools/images.h"
#include "tools/lettering.h"

namespace tidewell::tools {
namespace {

using namespace colours;

constexpr int kWidth = 270;
constexpr int kHeight = 103;
constexpr int kSmooth = 4;

Shape Within(Shape shape, Shape clip) {
  return [=](double x, double y) { return shape(x, y) && clip(x, y); };
}

// The area under a wave crossing the sheet at height `level`.
Shape Tide(double level, double amplitude, double wavelength, double phase) {
  return [=](double x, double y) {
    return y >= level + amplitude * std::sin(2 * std::numbers::pi * (x / wavelength + phase));
  };
}

// Moves a shape drawn in the logo's coordinates onto a canvas: logo point (`x0`, `y0`) lands
// on the canvas origin and every length is multiplied by `scale`.
struct Placement {
  double scale = 1, x0 = 0, y0 = 0;
  Shape operator()(Shape shape) const {
    return [=, *this](double x, double y) { return shape(x / scale + x0, y / scale + y0); };
  }
};

// The calendar sheet, drawn in the logo's coordinates (it covers x 8..78, y 12..88).
void DrawEmblem(Canvas& canvas, Placement place) {
  const double left = 8, top = 18, right = 78, bottom = 88;
  canvas.Fill(place(RoundRect(left, top, right, bottom, 9)), kNavy, kSmooth);
  const Shape sheet = RoundRect(left + 5, top + 16, right - 5, bottom - 5, 4);
  canvas.Fill(place(sheet), kWhite, kSmooth);
  for (int row = 0; row < 2; ++row) {
    for (int column = 0; column < 5; ++column) {
      const double x = left + 10 + column * 10.5, y = top + 21 + row * 8;
      canvas.Fill(place(RoundRect(x, y, x + 6, y + 4.5, 1.2)), kLightBlue, kSmooth);
    }
  }
  canvas.Fill(place(Within(Tide(top + 44, 3.2, 30, 0.1), sheet)), kMidBlue, kSmooth);
  canvas.Fill(place(Within(Tide(top + 52, 2.8, 30, 0.45), sheet)), kSlate, kSmooth);
  canvas.Fill(place(Within(Tide(top + 59, 2.2, 30, 0.8), sheet)), kNavy, kSmooth);
  for (double x : {left + 15, right - 22}) {
    canvas.Fill(place(RoundRect(x, top - 6, x + 7, top + 10, 3.5)), kMidBlue, kSmooth);
    canvas.Fill(place(RoundRect(x + 2.2, top - 3.8, x + 4.8, top + 7.8, 1.3)), kNavy, kSmooth);
  }
}

}  // namespace

std::vector<DrawnImage> DrawLogoImage() {
  Canvas canvas(kWidth, kHeight);
  DrawEmblem(canvas, Placement{});
  const double text_left = 92;
  StrokeStyle name_style{.unit = 4.55, .weight = 1.0, .spacing = 1.1};
  canvas.Fill(StrokeText("Tidewell", text_left, 60, name_style), kNavy, kSmooth);
  StrokeStyle line_style{.unit = 1.75, .weight = 0.85, .spacing = 1.3};
  canvas.Fill(StrokeText("group calendar", text_left + 2, 81, line_style), kSlate, kSmooth);
  return {{"logo_tidewell", canvas.ToIndexed(kWhite), kWhite}};
}

std::vector<DrawnImage> DrawPageIcon() {
  // The sheet's 80×80 square around its middle (43, 50), shrunk to 32×32.
  Canvas canvas(32, 32);
  DrawEmblem(canvas, Placement{.scale = 0.4, .x0 = 3, .y0 = 10});
  return {{"icon_tidewell", canvas.ToIndexed(kWhite), kWhite}};
}

}  // namespace tidewell::tools

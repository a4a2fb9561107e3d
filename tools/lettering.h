#pragma once

#include <string_view>

#include "tools/canvas.h"

namespace tidewell::tools {

// A 3×5 capital pixel font (M and W are 5 wide) for the captions under button glyphs.
// Letters A–Z, digits are not needed and not drawn; unknown characters are blanks.
int PixelTextWidth(std::string_view text);
void DrawPixelText(Canvas& canvas, int x, int y, std::string_view text, Rgb colour);

// A rounded geometric lower-case font built from strokes, with a capital T, for the logo.
// Glyphs are designed on a grid where the x-height is 5 units and the stroke 1 unit wide;
// `unit` gives the size of one grid unit in pixels and `weight` scales the stroke width.
struct StrokeStyle {
  double unit = 1;
  double weight = 1;
  double spacing = 1;  // gap between letters, in units
};
double StrokeTextWidth(std::string_view text, const StrokeStyle& style);
// The text set with its baseline at `baseline` and its left edge at `left`.
Shape StrokeText(std::string_view text, double left, double baseline, const StrokeStyle& style);

}  // namespace tidewell::tools

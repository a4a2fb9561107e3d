#include "tools/lettering.h"

#include <array>
#include <string>
#include <vector>

namespace tidewell::tools {
namespace {

struct PixelGlyph {
  char letter;
  std::array<const char*, 5> rows;
};

constexpr PixelGlyph kPixelGlyphs[] = {
    {'A', {".#.", "#.#", "###", "#.#", "#.#"}},
    {'B', {"##.", "#.#", "##.", "#.#", "##."}},
    {'C', {".##", "#..", "#..", "#..", ".##"}},
    {'D', {"##.", "#.#", "#.#", "#.#", "##."}},
    {'E', {"###", "#..", "##.", "#..", "###"}},
    {'F', {"###", "#..", "##.", "#..", "#.."}},
    {'G', {".##", "#..", "#.#", "#.#", ".##"}},
    {'H', {"#.#", "#.#", "###", "#.#", "#.#"}},
    {'I', {"###", ".#.", ".#.", ".#.", "###"}},
    {'J', {"..#", "..#", "..#", "#.#", ".#."}},
    {'K', {"#.#", "#.#", "##.", "#.#", "#.#"}},
    {'L', {"#..", "#..", "#..", "#..", "###"}},
    {'M', {"#...#", "##.##", "#.#.#", "#...#", "#...#"}},
    {'N', {"#..#", "##.#", "#.##", "#..#", "#..#"}},
    {'O', {".#.", "#.#", "#.#", "#.#", ".#."}},
    {'P', {"##.", "#.#", "##.", "#..", "#.."}},
    {'Q', {".#.", "#.#", "#.#", "##.", ".##"}},
    {'R', {"##.", "#.#", "##.", "#.#", "#.#"}},
    {'S', {".##", "#..", ".#.", "..#", "##."}},
    {'T', {"###", ".#.", ".#.", ".#.", ".#."}},
    {'U', {"#.#", "#.#", "#.#", "#.#", "###"}},
    {'V', {"#.#", "#.#", "#.#", "#.#", ".#."}},
    {'W', {"#...#", "#...#", "#.#.#", "#.#.#", ".#.#."}},
    {'X', {"#.#", "#.#", ".#.", "#.#", "#.#"}},
    {'Y', {"#.#", "#.#", ".#.", ".#.", ".#."}},
    {'Z', {"###", "..#", ".#.", "#..", "###"}},
    {'/', {"..#", "..#", ".#.", "#..", "#.."}},
    {' ', {"..", "..", "..", "..", ".."}},
};

const PixelGlyph& FindPixelGlyph(char letter) {
  for (const PixelGlyph& glyph : kPixelGlyphs) {
    if (glyph.letter == letter) return glyph;
  }
  return kPixelGlyphs[sizeof(kPixelGlyphs) / sizeof(kPixelGlyphs[0]) - 1];
}

int GlyphWidth(const PixelGlyph& glyph) {
  return static_cast<int>(std::string_view(glyph.rows[0]).size());
}

// Stroke glyphs on the design grid: baseline at y = 0, y growing upward, x-height 5,
// ascenders 7.5, descenders -2.5. Centre lines are placed half a unit inside the letter's
// outline so that a stroke 1 unit wide fills the outline exactly.
struct StrokeGlyph {
  char letter;
  double advance;  // ink width in units
};

constexpr StrokeGlyph kStrokeGlyphs[] = {
    {'T', 6}, {'a', 5}, {'c', 4.6}, {'d', 5},   {'e', 5}, {'g', 5}, {'i', 1}, {'l', 1},
    {'n', 5}, {'o', 5}, {'p', 5},   {'r', 3.4}, {'u', 5}, {'w', 6}, {' ', 2},
};

double StrokeAdvance(char letter) {
  for (const StrokeGlyph& glyph : kStrokeGlyphs) {
    if (glyph.letter == letter) return glyph.advance;
  }
  return 2;
}

// Maps design-grid coordinates of one glyph to pixels and collects its strokes.
class GlyphPen {
 public:
  GlyphPen(double left, double baseline, const StrokeStyle& style)
      : left_(left), baseline_(baseline), style_(style) {}

  Point At(double x, double y) const {
    return {left_ + x * style_.unit, baseline_ - y * style_.unit};
  }
  double HalfWidth() const { return 0.5 * style_.weight * style_.unit; }

  void Line(double x0, double y0, double x1, double y1) {
    parts_.push_back(Segment(At(x0, y0), At(x1, y1), HalfWidth()));
  }
  void Curve(double cx, double cy, double radius, double from, double to) {
    parts_.push_back(Arc(At(cx, cy), radius * style_.unit, from, to, HalfWidth()));
  }
  void Bowl() { Curve(2.5, 2.5, 2, 0, 360); }
  void Dot(double x, double y) {
    const Point p = At(x, y);
    parts_.push_back(Disc(p.x, p.y, HalfWidth() * 1.3));
  }
  std::vector<Shape>& parts() { return parts_; }

 private:
  double left_;
  double baseline_;
  StrokeStyle style_;
  std::vector<Shape> parts_;
};

void DrawStrokeGlyph(char letter, GlyphPen& pen) {
  switch (letter) {
    case 'T':
      pen.Line(0.5, 7, 5.5, 7);
      pen.Line(3, 7, 3, 0.5);
      break;
    case 'a':
      pen.Bowl();
      pen.Line(4.5, 4.5, 4.5, 0.5);
      break;
    case 'c':
      pen.Curve(2.5, 2.5, 2, 45, 315);
      break;
    case 'd':
      pen.Bowl();
      pen.Line(4.5, 7, 4.5, 0.5);
      break;
    case 'e':
      pen.Line(0.5, 2.5, 4.5, 2.5);
      pen.Curve(2.5, 2.5, 2, 0, 315);
      break;
    case 'g':
      pen.Bowl();
      pen.Line(4.5, 4.5, 4.5, -0.5);
      pen.Curve(2.5, -0.5, 2, 205, 360);
      break;
    case 'i':
      pen.Line(0.5, 4.5, 0.5, 0.5);
      pen.Dot(0.5, 6.5);
      break;
    case 'l':
      pen.Line(0.5, 7, 0.5, 0.5);
      break;
    case 'n':
      pen.Line(0.5, 4.5, 0.5, 0.5);
      pen.Curve(2.5, 2.5, 2, 0, 180);
      pen.Line(4.5, 2.5, 4.5, 0.5);
      break;
    case 'o':
      pen.Bowl();
      break;
    case 'p':
      pen.Bowl();
      pen.Line(0.5, 4.5, 0.5, -2.5);
      break;
    case 'r':
      pen.Line(0.5, 4.5, 0.5, 0.5);
      pen.Curve(2.5, 2.5, 2, 75, 180);
      break;
    case 'u':
      pen.Line(0.5, 4.5, 0.5, 2.5);
      pen.Curve(2.5, 2.5, 2, 180, 360);
      pen.Line(4.5, 4.5, 4.5, 0.5);
      break;
    case 'w':
      pen.Line(0.5, 4.5, 1.75, 0.5);
      pen.Line(1.75, 0.5, 3, 3.6);
      pen.Line(3, 3.6, 4.25, 0.5);
      pen.Line(4.25, 0.5, 5.5, 4.5);
      break;
    default:
      break;
  }
}

}  // namespace

int PixelTextWidth(std::string_view text) {
  int width = 0;
  for (char letter : text) width += GlyphWidth(FindPixelGlyph(letter)) + 1;
  return text.empty() ? 0 : width - 1;
}

void DrawPixelText(Canvas& canvas, int x, int y, std::string_view text, Rgb colour) {
  for (char letter : text) {
    const PixelGlyph& glyph = FindPixelGlyph(letter);
    const int width = GlyphWidth(glyph);
    for (int row = 0; row < 5; ++row) {
      for (int column = 0; column < width; ++column) {
        if (glyph.rows[row][column] == '#') canvas.Set(x + column, y + row, colour);
      }
    }
    x += width + 1;
  }
}

double StrokeTextWidth(std::string_view text, const StrokeStyle& style) {
  double units = 0;
  for (char letter : text) units += StrokeAdvance(letter) + style.spacing;
  return text.empty() ? 0 : (units - style.spacing) * style.unit;
}

Shape StrokeText(std::string_view text, double left, double baseline, const StrokeStyle& style) {
  std::vector<Shape> parts;
  for (char letter : text) {
    GlyphPen pen(left, baseline, style);
    DrawStrokeGlyph(letter, pen);
    for (Shape& part : pen.parts()) parts.push_back(std::move(part));
    left += (StrokeAdvance(letter) + style.spacing) * style.unit;
  }
  return Union(std::move(parts));
}

}  // namespace tidewell::tools

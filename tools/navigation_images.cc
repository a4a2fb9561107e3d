// The header buttons (49×31 on the frame colour), the month and year arrows (40×25 on the
// frame colour), the small previous/next arrows of the view headings (24×15) and the
// header's separator line (600×1).
//
// Everything here sits on the frame colour, which a site may change. Edges that meet it are
// therefore drawn crisp, with the surroundings left transparent: no pixel is blended with a
// colour the page might not have. Soft edges appear only inside the opaque button faces.

#include <cstdlib>
#include <functional>

#include "tools/images.h"
#include "tools/lettering.h"

namespace tidewell::tools {
namespace {

using namespace colours;

constexpr int kButtonWidth = 49;
constexpr int kButtonHeight = 31;
constexpr int kSmooth = 4;  // samples per pixel side for soft edges

// The light face of a header button with its glyph drawn by `glyph` and a caption below.
DrawnImage Button(const std::string& name, const std::string& caption,
                  const std::function<void(Canvas&)>& glyph) {
  Canvas canvas(kButtonWidth, kButtonHeight);
  canvas.Fill(RoundRect(1, 1, 48, 30, 3.2), kMidBlue);
  canvas.Fill(RoundRect(2, 2, 47, 29, 2.2), kLightBlue);
  canvas.Fill(Rect(4, 2, 45, 2.9), kWhite);
  glyph(canvas);
  DrawPixelText(canvas, (kButtonWidth - PixelTextWidth(caption) + 1) / 2, 22, caption, kNavy);
  return {name, canvas.ToIndexed(kNavy), kNavy};
}

// A calendar sheet with a plus badge at its lower right.
void AddItemGlyph(Canvas& c) {
  c.Fill(Rect(12, 4, 29, 18), kNavy);
  c.Fill(Rect(13, 8, 28, 17), kWhite);
  for (int row = 0; row < 2; ++row) {
    for (int column = 0; column < 4; ++column) {
      c.FillRect(15 + column * 3, 10 + row * 3, 2, 2, kMidBlue);
    }
  }
  c.Fill(Disc(30, 14, 6), kLightBlue, kSmooth);
  c.Fill(Disc(30, 14, 4.9), kNavy, kSmooth);
  c.FillRect(27, 13, 6, 2, kWhite);
  c.FillRect(29, 11, 2, 6, kWhite);
}

void SearchGlyph(Canvas& c) {
  c.Fill(Disc(21.5, 10.5, 4.6), kWhite, kSmooth);
  c.Fill(Ring(21.5, 10.5, 6.3, 4.3), kNavy, kSmooth);
  c.Fill(Segment({26, 15}, {30, 19}, 1.7), kNavy, kSmooth);
  c.Fill(Arc({21.5, 10.5}, 2.5, 100, 170, 0.6), kMidBlue, kSmooth);
}

// Three sliders with their knobs at different settings.
void OptionsGlyph(Canvas& c) {
  const int knob_x[3] = {17, 28, 22};
  for (int i = 0; i < 3; ++i) {
    const int y = 5 + i * 5;
    c.FillRect(14, y, 21, 2, kSlate);
    c.Fill(RoundRect(knob_x[i], y - 2, knob_x[i] + 4, y + 4, 1.2), kNavy, kSmooth);
  }
}

// Head and shoulders of a person centred on `cx`, the head's top at `top`.
void Person(Canvas& c, double cx, double top, Rgb colour) {
  c.Fill(Disc(cx, top + 3.6, 3.6), colour, kSmooth);
  c.Fill(Minus(Disc(cx, top + 15, 7), Rect(0, top + 15, 99, 99)), colour, kSmooth);
}

// Two people: the accounts and groups an administrator manages.
void AdminGlyph(Canvas& c) {
  Person(c, 28.5, 3, kSlate);
  c.Fill(Disc(21, 8.1, 4.8), kLightBlue, kSmooth);
  c.Fill(Minus(Disc(21, 19, 8.4), Rect(0, 19, 99, 99)), kLightBlue, kSmooth);
  Person(c, 21, 4.5, kNavy);
}

// A key: signing in, signing out and changing user share this button.
void LoginGlyph(Canvas& c) {
  c.Fill(Ring(17.5, 11.5, 5.2, 2.4), kNavy, kSmooth);
  c.Fill(Rect(22, 10.2, 33, 12.8), kNavy, kSmooth);
  c.FillRect(29, 13, 2, 4, kNavy);
  c.FillRect(32, 13, 2, 3, kNavy);
}

// A filled triangle pointing left (`left` true) or right, crisp, `width` wide and `height`
// high, with its flat side at `x` and its centre line at `cy`.
void Triangle(Canvas& c, int x, int cy, int width, int height, bool left, Rgb colour) {
  const int half = height / 2;
  for (int dy = -half; dy <= half; ++dy) {
    const int span = width - (std::abs(dy) * width + half) / (half + 1);
    for (int i = 0; i < span; ++i) c.Set(left ? x - i : x + i, cy + dy, colour);
  }
}

// Month and year arrows: one triangle for a month, two for a year, in the light blue of the
// header's text, on a transparent ground.
DrawnImage HeaderArrow(const std::string& name, bool left, bool year) {
  Canvas canvas(40, 25);
  const int cy = 14;
  if (year) {
    Triangle(canvas, left ? 21 : 18, cy, 6, 11, left, kLightBlue);
    Triangle(canvas, left ? 27 : 12, cy, 6, 11, left, kLightBlue);
  } else {
    Triangle(canvas, left ? 23 : 16, cy, 7, 13, left, kLightBlue);
  }
  return {name, canvas.ToIndexed(kNavy), kNavy};
}

DrawnImage HeadingArrow(const std::string& name, bool left) {
  Canvas canvas(24, 15);
  Triangle(canvas, left ? 14 : 9, 7, 5, 9, left, kWhite);
  return {name, canvas.ToIndexed(kNavy), kNavy};
}

DrawnImage SeparatorLine() {
  Canvas canvas(600, 1);
  canvas.FillRect(0, 0, 600, 1, kWhite);
  return {"nav_line", canvas.ToIndexed(kNavy), kNavy};
}

}  // namespace

std::vector<DrawnImage> DrawNavigationImages() {
  return {
      Button("nav_additem", "NEW", AddItemGlyph),
      Button("nav_search", "SEARCH", SearchGlyph),
      Button("nav_options", "OPTIONS", OptionsGlyph),
      Button("nav_admin", "ADMIN", AdminGlyph),
      Button("nav_login", "USER", LoginGlyph),
      HeaderArrow("nav_prev_year", true, true),
      HeaderArrow("nav_prev_month", true, false),
      HeaderArrow("nav_next_month", false, false),
      HeaderArrow("nav_next_year", false, true),
      HeadingArrow("nav_prev", true),
      HeadingArrow("nav_next", false),
      SeparatorLine(),
  };
}

}  // namespace tidewell::tools

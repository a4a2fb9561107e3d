// Small marks: the week link in month cells (12×12), the urgent mark in item lists (6×12)
// and in the time view's column headings (6×14), the "more" link (16×16), the date-picker
// button beside date fields (16×16), the help icon of the left column (30×30), and the
// rounded corner where the white user banner meets the frame (24×20).
//
// Marks that sit in cells whose colour varies (plain, neighbouring month, today) are crisp
// pixel art on a transparent ground. Only marks on a known ground are smoothed.

#include <cmath>
#include <map>
#include <numbers>

#include "tools/images.h"

namespace tidewell::tools {
namespace {

using namespace colours;

constexpr int kSmooth = 4;

// Paints pixel art given as rows of letters; '.' leaves a pixel transparent.
void DrawArt(Canvas& canvas, const std::vector<std::string>& rows,
             const std::map<char, Rgb>& legend) {
  for (int y = 0; y < static_cast<int>(rows.size()); ++y) {
    for (int x = 0; x < static_cast<int>(rows[y].size()); ++x) {
      if (auto found = legend.find(rows[y][x]); found != legend.end()) {
        canvas.Set(x, y, found->second);
      }
    }
  }
}

DrawnImage Art(const std::string& name, const std::vector<std::string>& rows,
               const std::map<char, Rgb>& legend, Rgb background) {
  Canvas canvas(static_cast<int>(rows.front().size()), static_cast<int>(rows.size()));
  DrawArt(canvas, rows, legend);
  return {name, canvas.ToIndexed(background), background};
}

// A calendar card with one week row picked out.
DrawnImage WeekIcon() {
  return Art("icon_week",
             {
                 "..n......n..",
                 "nnnnnnnnnnnn",
                 "nnnnnnnnnnnn",
                 "nwwwwwwwwwwn",
                 "nwllwllwllwn",
                 "nwwwwwwwwwwn",
                 "nbbbbbbbbbbn",
                 "nbwwbwwbwwbn",
                 "nbbbbbbbbbbn",
                 "nwwwwwwwwwwn",
                 "nwllwllwllwn",
                 "nnnnnnnnnnnn",
             },
             {{'n', kNavy}, {'w', kWhite}, {'l', kMidBlue}, {'b', kSlate}}, kWhite);
}

DrawnImage UrgentIcon() {
  return Art("icon_urgent",
             {
                 "..rr..",
                 ".rrrr.",
                 ".rrrr.",
                 ".rrrr.",
                 ".rrrr.",
                 "..rr..",
                 "..rr..",
                 "..rr..",
                 "......",
                 "......",
                 "..rr..",
                 "..rr..",
             },
             {{'r', kRed}}, kWhite);
}

// The same mark, two pixels longer, for the column heading that sorts by urgency.
DrawnImage UrgentTitleIcon() {
  return Art("icon_urgent_title",
             {
                 "..rr..",
                 ".rrrr.",
                 ".rrrr.",
                 ".rrrr.",
                 ".rrrr.",
                 ".rrrr.",
                 "..rr..",
                 "..rr..",
                 "..rr..",
                 "..rr..",
                 "......",
                 "......",
                 "..rr..",
                 "..rr..",
             },
             {{'r', kRed}}, kMidBlue);
}

// Three dots on a navy tile: more items than the cell shows.
DrawnImage MoreIcon() {
  Canvas canvas(16, 16);
  canvas.Fill(RoundRect(1, 1, 15, 15, 3), kNavy);
  for (int x : {4, 7, 10}) canvas.FillRect(x, 7, 2, 2, kWhite);
  return {"nav_more", canvas.ToIndexed(kWhite), kWhite};
}

// A calendar sheet with binder rings, one day marked in red.
DrawnImage DatePickerIcon() {
  Canvas canvas(16, 16);
  canvas.FillRect(1, 2, 15, 14, kNavy);
  canvas.FillRect(2, 5, 13, 10, kWhite);
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      const bool marked = row == 1 && column == 2;
      canvas.FillRect(3 + column * 3, 6 + row * 3, 2, 2, marked ? kRed : kMidBlue);
    }
  }
  for (int x : {4, 11}) canvas.FillRect(x, 0, 2, 4, kGrey);
  return {"icon_dpicker", canvas.ToIndexed(kWhite), kWhite};
}

// A question mark on a navy disc, smoothed against the white left column.
DrawnImage HelpIcon() {
  Canvas canvas(30, 30);
  canvas.Fill(Disc(15, 15, 14.5), kNavy, kSmooth);
  canvas.Fill(Ring(15, 15, 13.2, 12.2), kSlate, kSmooth);
  const double half = 1.75;
  canvas.Fill(Arc({15, 11.5}, 4.5, 290, 520, half), kWhite, kSmooth);
  const double radians = -70 * std::numbers::pi / 180;
  const Point hook_end{15 + 4.5 * std::cos(radians), 11.5 - 4.5 * std::sin(radians)};
  canvas.Fill(Segment(hook_end, {15, 18.2}, half), kWhite, kSmooth);
  canvas.Fill(Disc(15, 22.6, 1.9), kWhite, kSmooth);
  return {"icon_help", canvas.ToIndexed(kWhite), kWhite};
}

// The user banner is a white strip in the frame's top right corner. This piece starts it
// with a rounded lower left corner, the frame colour filling the space outside the curve.
DrawnImage BannerCorner() {
  constexpr double kRadius = 16;
  constexpr int kWidth = 24, kHeight = 20;
  Canvas canvas(kWidth, kHeight);
  canvas.FillRect(0, 0, kWidth, kHeight, kNavy);
  canvas.Fill(
      [&](double x, double y) {
        if (x >= kRadius || y <= kHeight - kRadius) return true;
        return std::hypot(x - kRadius, y - (kHeight - kRadius)) <= kRadius;
      },
      kWhite, kSmooth);
  return {"icon_topright", canvas.ToIndexed(kWhite), kWhite};
}

}  // namespace

std::vector<DrawnImage> DrawIconImages() {
  return {BannerCorner(), WeekIcon(), UrgentIcon(),    UrgentTitleIcon(),
          HelpIcon(),     MoreIcon(), DatePickerIcon()};
}

}  // namespace tidewell::tools

// The edge pieces of the view tabs (5×21) and the spacer of their white rows (1×1).
//
// The tab strip hangs below the page frame. A selected tab is a 21-pixel cell in the frame
// colour; a tab not selected is a 19-pixel cell in slate above a 2-pixel white row, so it
// looks shorter, tucked behind. Each edge piece carries the tab colour down to where the
// cell's colour ends and rounds the outer bottom corner against the white page, so that the
// pieces join the table cells on both sides without a seam.

#include <cmath>

#include "tools/images.h"

namespace tidewell::tools {
namespace {

using namespace colours;

constexpr int kEdgeWidth = 5;
constexpr int kEdgeHeight = 21;
constexpr double kCornerRadius = 4;
constexpr int kSmooth = 4;

enum class Side { kLeft, kRight };

// The tab's area within an edge piece: full width from the top down to `bottom`, with the
// bottom corner on the outer `side` rounded (unless `rounded` is false).
Shape TabArea(Side side, double bottom, bool rounded) {
  return [=](double x, double y) {
    if (y > bottom) return false;
    if (!rounded || y < bottom - kCornerRadius) return true;
    const double cx = side == Side::kLeft ? kCornerRadius : kEdgeWidth - kCornerRadius;
    const bool outside_corner = side == Side::kLeft ? x < cx : x > cx;
    return !outside_corner || std::hypot(x - cx, y - (bottom - kCornerRadius)) <= kCornerRadius;
  };
}

// Tabs not selected get a light left edge and a dark right edge, so that two of them side by
// side read as separate tabs.
DrawnImage Edge(const std::string& name, Side side, bool selected) {
  Canvas canvas(kEdgeWidth, kEdgeHeight);
  canvas.FillRect(0, 0, kEdgeWidth, kEdgeHeight, kWhite);
  const double bottom = selected ? kEdgeHeight : kEdgeHeight - 2;
  const Shape area = TabArea(side, bottom, true);
  canvas.Fill(area, selected ? kNavy : kSlate, kSmooth);
  if (!selected) {
    const bool left = side == Side::kLeft;
    const Rgb edge = left ? Mix(kSlate, kWhite, 0.3) : Mix(kSlate, kNavy, 0.45);
    const double x0 = left ? 0 : kEdgeWidth - 1;
    const Shape line = Rect(x0, 0, x0 + 1, bottom);
    canvas.Fill([=](double x, double y) { return line(x, y) && area(x, y); }, edge, kSmooth);
  }
  return {name, canvas.ToIndexed(kWhite), kWhite};
}

// The left edge of the tab right of the selected one: the selected tab stands in front of
// it, so its corner is hidden and the selected tab casts a soft shadow on it.
DrawnImage EdgeBesideSelected() {
  Canvas canvas(kEdgeWidth, kEdgeHeight);
  canvas.FillRect(0, 0, kEdgeWidth, kEdgeHeight, kWhite);
  canvas.Fill(TabArea(Side::kLeft, kEdgeHeight - 2, false), kSlate);
  canvas.FillRect(0, 0, 1, kEdgeHeight - 2, Mix(kSlate, kNavy, 0.55));
  canvas.FillRect(1, 0, 1, kEdgeHeight - 2, Mix(kSlate, kNavy, 0.25));
  return {"tb_left_sns", canvas.ToIndexed(kWhite), kWhite};
}

// A fully transparent pixel that only holds a table row open.
DrawnImage Spacer() {
  Canvas canvas(1, 1);
  return {"tb_space", canvas.ToIndexed(kWhite), kWhite};
}

}  // namespace

std::vector<DrawnImage> DrawTabImages() {
  return {
      Edge("tb_left_sel", Side::kLeft, true),
      Edge("tb_right_sel", Side::kRight, true),
      EdgeBesideSelected(),
      Edge("tb_left_ns", Side::kLeft, false),
      Edge("tb_right", Side::kRight, false),
      Spacer(),
  };
}

}  // namespace tidewell::tools

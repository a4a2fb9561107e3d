#pragma once

#include <string>
#include <vector>

#include "tools/canvas.h"

namespace tidewell::tools {

// The default colour scheme the pages are drawn in.
namespace colours {
inline const Rgb kNavy = Hex(0x172676);       // frame, title bars, selected tab
inline const Rgb kLightBlue = Hex(0xdee7f7);  // today, selected rows
inline const Rgb kMidBlue = Hex(0xa5c1e7);    // time-view column headings
inline const Rgb kSlate = Hex(0x4f6f93);      // tabs not selected
inline const Rgb kPaleGrey = Hex(0xefefef);   // days of the neighbouring months
inline const Rgb kGrey = Hex(0xadadad);       // completed items
inline const Rgb kRed = Hex(0xb22222);        // urgent marks, error texts
inline const Rgb kWhite = Hex(0xffffff);
}  // namespace colours

// One image file the pages name: its file name without ".gif", the pixels, and the colour of
// the table cell it sits on (used to blend soft edges and to show it in previews).
struct DrawnImage {
  std::string name;
  IndexedImage image;
  Rgb background;
};

// The buttons, arrows and separators of the header bar and the view headings.
std::vector<DrawnImage> DrawNavigationImages();
// The corner pieces of the view tabs and the spacer of their white rows.
std::vector<DrawnImage> DrawTabImages();
// Small marks in calendar cells and forms: week link, urgent, more, help, date picker, and
// the rounded corner of the user banner.
std::vector<DrawnImage> DrawIconImages();
// The product logo on the login and welcome screens.
std::vector<DrawnImage> DrawLogoImage();
// The page icon browsers show on the tab and in bookmarks: the logo's calendar sheet.
std::vector<DrawnImage> DrawPageIcon();

}  // namespace tidewell::tools

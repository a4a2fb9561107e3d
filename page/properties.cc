#include "page/properties.h"

namespace tidewell {

void ResetPropertyDefaults(Properties& p) {
  const Properties defaults;
  p.DefaultStartHour = defaults.DefaultStartHour;
  p.HighlightDeltaDaysColor = defaults.HighlightDeltaDaysColor;
  p.HighlightTodaysDateColor = defaults.HighlightTodaysDateColor;
  p.HighlightTodaysTimeColor = defaults.HighlightTodaysTimeColor;
  p.TimeViewHeadingColor = defaults.TimeViewHeadingColor;
  p.TimeViewDescriptionColor = defaults.TimeViewDescriptionColor;
  p.TimeViewSelectedItemColor = defaults.TimeViewSelectedItemColor;
  p.TimeViewColumnColor = defaults.TimeViewColumnColor;
  p.CompletedItemColor = defaults.CompletedItemColor;
  p.TidewellColor = defaults.TidewellColor;
  p.HexQueryString = defaults.HexQueryString;
}

void SetImagePath(Properties& p, std::string value) {
  if (!value.empty() && value.back() != '/') value += '/';
  p.ImagePath = std::move(value);
}

}  // namespace tidewell

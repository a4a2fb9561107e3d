#pragma once

#include <string>

#include "data/dialect.h"

namespace tidewell {

// The component's public properties with their defaults. The host page sets them by name
// (property_table.h) after OnStartPage, as script did.
struct Properties {
  bool Visible = false;
  std::string Position;
  bool HexQueryString = true;
  ASPDataServer DataServer = ASPDataServer::Access;
  std::string ConnectionString;
  bool AllowUserOwnDefaults = false;
  long DefaultStartHour = -1;
  bool Show12HourDay = false;
  bool HighlightDeltaDays = false;
  bool HighlightTodaysDate = false;
  bool HighlightTodaysTime = false;
  std::string HighlightDeltaDaysColor = "#efefef";
  std::string HighlightTodaysDateColor = "#dee7f7";
  std::string HighlightTodaysTimeColor = "#dee7f7";
  std::string TimeViewHeadingColor = "#ffffff";
  std::string TimeViewDescriptionColor = "#ffffff";
  std::string TimeViewSelectedItemColor = "#dee7f7";
  std::string TimeViewColumnColor = "#a5c1e7";
  std::string CompletedItemColor = "#adadad";
  bool CompletedItemCrossOut = false;
  std::string TidewellColor = "#172676";
  std::string ImagePath;  // set through SetImagePath, which keeps it ending in "/"
};

// What OnStartPage and object creation set again: the start hour, the colours and the hex
// link setting. Everything else keeps its value.
void ResetPropertyDefaults(Properties& p);

// The ImagePath rule: a non-empty folder gets a trailing "/" when it has none.
void SetImagePath(Properties& p, std::string value);

}  // namespace tidewell

#include "host/page_template.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

TEST(PageTemplate, DefaultLinksTheStyleSheetAndDeclaresUtf8) {
  std::string page = DefaultPageTemplate();
  EXPECT_TRUE(IsPageTemplate(page));
  EXPECT_NE(page.find("href=\"tidewell.css\""), std::string::npos);
  // A page icon of our own, so that browsers do not ask for /favicon.ico.
  EXPECT_NE(page.find("<link rel=\"icon\" type=\"image/gif\" href=\"images/icon_tidewell.gif\">"),
            std::string::npos);
  EXPECT_NE(page.find("charset=utf-8"), std::string::npos);
  // The transitional document type without a system identifier keeps the table layouts in
  // the browsers' compatibility mode.
  EXPECT_EQ(page.rfind("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\">\n", 0),
            0u);
}

TEST(PageTemplate, FillPutsTheOutputAtTheMarker) {
  EXPECT_EQ(FillPageTemplate("<b>{{tidewell}}</b>", "<i>x</i>"), "<b><i>x</i></b>");
}

TEST(PageTemplate, OutputIsNotSearchedForMarkers) {
  EXPECT_EQ(FillPageTemplate("[{{tidewell}}]", "{{tidewell}}"), "[{{tidewell}}]");
}

TEST(PageTemplate, MarkerMustStandOnce) {
  EXPECT_FALSE(IsPageTemplate("<html></html>"));
  EXPECT_FALSE(IsPageTemplate("{{tidewell}}{{tidewell}}"));
  EXPECT_TRUE(IsPageTemplate("{{tidewell}}"));
}

}  // namespace
}  // namespace tidewell

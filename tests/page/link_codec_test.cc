#include "page/link_codec.h"

#include <gtest/gtest.h>

#include <random>

#include "page/page.h"
#include "runtime/automation_error.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"

namespace tidewell {
namespace {

TEST(EncodeQueryString, TildeSixTilde) {
  EXPECT_EQ(EncodeQueryString("~6~", true), "7E367E");
}
TEST(EncodeQueryString, PadsSmallCodesToTwoDigits) {
  EXPECT_EQ(EncodeQueryString("\t", true), "09");
}
TEST(EncodeQueryString, EmptyPayloadEncodesAndDecodesToEmpty) {
  EXPECT_EQ(EncodeQueryString("", true), "");
  EXPECT_EQ(DecodeQueryString("", true), "");
}
TEST(EncodeQueryString, HexOffLeavesTextAlone) {
  EXPECT_EQ(EncodeQueryString("~6~", false), "~6~");
  EXPECT_EQ(DecodeQueryString("~6~", false), "~6~");
}

// Each byte is encoded, so characters beyond one byte come back whole.
TEST(EncodeQueryString, MultibyteCharacterSurvivesTheRoundTrip) {
  std::string text = "~Zoë 日本~";
  EXPECT_EQ(EncodeQueryString("ë", true), "C3AB");
  EXPECT_EQ(DecodeQueryString(EncodeQueryString(text, true), true), text);
}

TEST(DecodeQueryString, AcceptsLowerCaseDigits) {
  EXPECT_EQ(DecodeQueryString("7e367e", true), "~6~");
}
TEST(DecodeQueryString, OddLastDigitIsReadAlone) {
  EXPECT_EQ(DecodeQueryString("7E7", true), "~\x07");
}
TEST(DecodeQueryString, NonHexPairIsTypeMismatch) {
  try {
    DecodeQueryString("7EZZ", true);
    FAIL();
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), errors::kTypeMismatch);
  }
}
TEST(DecodeQueryString, HexLinkReadWithHexOffDoesNotParse) {
  EXPECT_EQ(DecodeQueryString("7E367E", false), "7E367E");
}

TEST(CodecRoundTrip, RandomBytesWithHexOn) {
  std::mt19937 random(20261121);
  for (int run = 0; run < 500; ++run) {
    std::string bytes(random() % 64, '\0');
    for (char& c : bytes) c = static_cast<char>(random() % 256);
    std::string encoded = EncodeQueryString(bytes, true);
    ASSERT_EQ(encoded.size(), bytes.size() * 2);
    ASSERT_EQ(encoded.find_first_not_of("0123456789ABCDEF"), std::string::npos);
    ASSERT_EQ(DecodeQueryString(encoded, true), bytes);
  }
}

TEST(CodecRoundTrip, RandomTextIsIdentityWithHexOff) {
  std::mt19937 random(7);
  for (int run = 0; run < 200; ++run) {
    std::string bytes(random() % 64, '\0');
    for (char& c : bytes) c = static_cast<char>(random() % 256);
    ASSERT_EQ(EncodeQueryString(bytes, false), bytes);
    ASSERT_EQ(DecodeQueryString(bytes, false), bytes);
  }
}

Page PageAt(std::string script_name, bool hex) {
  Page page;
  page.ScriptName = std::move(script_name);
  page.props.HexQueryString = hex;
  return page;
}

TEST(BuildLink, EmptySuffixEndsThePayloadWithTilde) {
  Page page = PageAt("default.asp?", false);
  std::string link = BuildLink(page, "4/0", "", 8, 0, "", "", "", "");
  EXPECT_EQ(link, "default.asp?WS=~4/0~~8~0~~~~");
  EXPECT_EQ(link.back(), '~');
}

TEST(BuildLink, SuffixFollowsTheLastTilde) {
  Page page = PageAt("?", false);
  EXPECT_EQ(BuildLink(page, "5/15", "", 9, 0, "", "", "", "1"), "?WS=~5/15~~9~0~~~~1");
}

TEST(BuildLink, HexEncodesThePayload) {
  Page page = PageAt("x.asp?", true);
  EXPECT_EQ(BuildLink(page, 6, "", "", "", "", "", ""),
            "x.asp?WS=" + EncodeQueryString("~6~~~~~~~", true));
}

TEST(BuildLink, DatesFollowTheRegionalSettings) {
  Page page = PageAt("?", false);
  Date date = DateSerial(2026, 11, 15);
  {
    ScopedRegionalSettings us("en-US");
    EXPECT_EQ(BuildLink(page, 0, date, 8, 37, "", "", ""), "?WS=~0~11/15/2026~8~37~~~~");
  }
  {
    ScopedRegionalSettings gb("en-GB");
    EXPECT_EQ(BuildLink(page, 0, date, 8, 37, "", "", ""), "?WS=~0~15/11/2026~8~37~~~~");
  }
}

TEST(BuildLink, KeysAreWrittenSigned) {
  Page page = PageAt("?", false);
  std::string key(32, 'a');
  std::string link = BuildLink(page, 0, "", 8, 0, key, "", key);
  // ~0~~8~0~<key>.<expiry>.<mac>~~<key>.<expiry>.<mac>~
  EXPECT_NE(link.find("~" + key + "."), std::string::npos);
  EXPECT_EQ(link.find("~" + key + "~"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

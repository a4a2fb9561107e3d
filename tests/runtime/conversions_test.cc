#include "runtime/conversions.h"

#include <gtest/gtest.h>

#include "runtime/automation_error.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"

namespace tidewell {
namespace {

long ErrorNumberOf(auto&& call) {
  try {
    call();
  } catch (const AutomationError& e) {
    return e.number();
  }
  return 0;
}

TEST(CLng, ReadsDecimalText) {
  EXPECT_EQ(CLng("42"), 42);
}
TEST(CLng, AllowsBlanksAndSign) {
  EXPECT_EQ(CLng("  -7 "), -7);
}
TEST(CLng, RoundsHalfToEven) {
  EXPECT_EQ(CLng("2.5"), 2);
  EXPECT_EQ(CLng("3.5"), 4);
}
TEST(CLng, ReadsHexText) {
  EXPECT_EQ(CLng("&h7E"), 126);
}
TEST(CLng, NonNumericTextIsTypeMismatch) {
  EXPECT_EQ(ErrorNumberOf([] { CLng("abc"); }), errors::kTypeMismatch);
}
TEST(CLng, EmptyTextIsTypeMismatch) {
  EXPECT_EQ(ErrorNumberOf([] { CLng(""); }), errors::kTypeMismatch);
}
TEST(CLng, EmptyVariantIsZero) {
  EXPECT_EQ(CLng(Variant()), 0);
}
TEST(CLng, TrueIsMinusOne) {
  EXPECT_EQ(CLng(true), -1);
}
TEST(CLng, NullIsInvalidUseOfNull) {
  EXPECT_EQ(ErrorNumberOf([] { CLng(Variant(Null{})); }), errors::kInvalidUseOfNull);
}
TEST(CLng, TooLargeIsOverflow) {
  EXPECT_EQ(ErrorNumberOf([] { CLng("3000000000"); }), errors::kOverflow);
}
TEST(CLng, TypeMismatchCarriesTheAutomationHresult) {
  try {
    CLng("x");
    FAIL();
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.hresult(), -2146828275);  // 0x800A000D
    EXPECT_STREQ(e.what(), "Type mismatch");
  }
}

TEST(CStr, WritesBooleansAsWords) {
  EXPECT_EQ(CStr(true), "True");
  EXPECT_EQ(CStr(false), "False");
}
TEST(CStr, WritesNumbers) {
  EXPECT_EQ(CStr(-12), "-12");
  EXPECT_EQ(CStr(2.5), "2.5");
  EXPECT_EQ(CStr(0.1), "0.1");
}
TEST(CStr, EmptyIsEmptyText) {
  EXPECT_EQ(CStr(Variant()), "");
}
TEST(CStr, WritesDatesInTheRegionalFormat) {
  {
    ScopedRegionalSettings us("en-US");
    EXPECT_EQ(CStr(DateSerial(2026, 11, 5)), "11/5/2026");
  }
  {
    ScopedRegionalSettings gb("en-GB");
    EXPECT_EQ(CStr(DateSerial(2026, 11, 5)), "05/11/2026");
  }
}

TEST(CBool, ReadsWordsAndNumbers) {
  EXPECT_TRUE(CBool("True"));
  EXPECT_TRUE(CBool("true"));
  EXPECT_FALSE(CBool("False"));
  EXPECT_TRUE(CBool("-1"));
  EXPECT_FALSE(CBool("0"));
  EXPECT_TRUE(CBool(5));
}
TEST(CBool, OtherTextIsTypeMismatch) {
  EXPECT_EQ(ErrorNumberOf([] { CBool("yes"); }), errors::kTypeMismatch);
}

TEST(IsNumeric, TellsNumbersFromText) {
  EXPECT_TRUE(IsNumeric("12"));
  EXPECT_TRUE(IsNumeric(" 1.5e3 "));
  EXPECT_TRUE(IsNumeric("&HFF"));
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_FALSE(IsNumeric(""));
  EXPECT_FALSE(IsNumeric("0x10"));
  EXPECT_FALSE(IsNumeric("inf"));
  EXPECT_FALSE(IsNumeric("12a"));
  EXPECT_FALSE(IsNumeric(DateSerial(2020, 1, 1)));
}

TEST(Trim, DropsSpacesOnly) {
  EXPECT_EQ(Trim("  a b  "), "a b");
  EXPECT_EQ(Trim("\ta\t"), "\ta\t");
  EXPECT_EQ(Trim("   "), "");
  EXPECT_EQ(LTrim("  a "), "a ");
  EXPECT_EQ(RTrim("  a "), "  a");
}

TEST(FormatTwoDigits, PadsToTwoDigits) {
  EXPECT_EQ(FormatTwoDigits(5), "05");
  EXPECT_EQ(FormatTwoDigits(0), "00");
  EXPECT_EQ(FormatTwoDigits(23), "23");
  EXPECT_EQ(FormatTwoDigits(123), "123");
}

}  // namespace
}  // namespace tidewell

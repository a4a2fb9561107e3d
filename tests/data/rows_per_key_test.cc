// Keeping the first rows of each group of a statement's rows, as a provider that read them all
// does it (the providers themselves are checked on both engines in the conformance reads).

#include "data/rows_per_key.h"

#include <gtest/gtest.h>

#include "data/database_error.h"
#include "data/session.h"

namespace tidewell::ado {
namespace {

Rows Sample() {
  Rows rows;
  rows.names = {"Heading", "DateStamp", "TimeStamp"};
  rows.kinds = {ColumnKind::kText, ColumnKind::kText, ColumnKind::kInteger};
  const auto row = [&](const char* heading, Variant day, Variant hour) {
    rows.values.push_back({Variant(heading), std::move(day), std::move(hour)});
  };
  row("a", Variant("d1"), Variant(Null{}));
  row("b", Variant("d1"), Variant(Null{}));
  row("c", Variant("d1"), Variant(9));
  row("d", Variant("d1"), Variant(9));
  row("e", Variant("d1"), Variant(9));
  row("f", Variant("d2"), Variant(9));
  row("g", Variant(Null{}), Variant(9));
  row("h", Variant(Null{}), Variant(9));
  return rows;
}

std::string Headings(const Rows& rows) {
  std::string headings;
  for (const auto& row : rows.values) headings += row[0].AsString();
  return headings;
}

TEST(KeepPerKey, KeepsTheFirstRowsOfEachRunOfEqualKeys) {
  EXPECT_EQ(Headings(KeepPerKey(Sample(), {{"DateStamp"}, 2})), "abfgh");
  EXPECT_EQ(Headings(KeepPerKey(Sample(), {{"DateStamp", "TimeStamp"}, 1})), "acfg");
  EXPECT_EQ(Headings(KeepPerKey(Sample(), {{"timestamp"}, 2})), "abcd");
  EXPECT_EQ(Headings(KeepPerKey(Sample(), {{"DateStamp"}, 0})), "");
}

TEST(KeepPerKey, AKeyColumnTheStatementLacksFails) {
  EXPECT_THROW(KeepPerKey(Sample(), {{"Initials"}, 2}), DatabaseError);
}

// The parts of a key are told apart by their lengths, and a null from an empty text.
TEST(KeyRuns, KeysOfOtherPartsDiffer) {
  std::string ab_c, a_bc, null_part, empty_part;
  KeyRuns::NextKeyPart(ab_c, "ab", 2);
  KeyRuns::NextKeyPart(ab_c, "c", 1);
  KeyRuns::NextKeyPart(a_bc, "a", 1);
  KeyRuns::NextKeyPart(a_bc, "bc", 2);
  KeyRuns::NextKeyPart(null_part, nullptr, 0);
  KeyRuns::NextKeyPart(empty_part, "", 0);
  EXPECT_NE(ab_c, a_bc);
  EXPECT_NE(null_part, empty_part);
}

}  // namespace
}  // namespace tidewell::ado

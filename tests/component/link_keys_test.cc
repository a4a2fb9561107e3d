#include "component/link_keys.h"

#include <gtest/gtest.h>

#include <set>

#include "runtime/clock.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

class LinkKeys : public ::testing::Test {
 protected:
  void SetUp() override { SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(10, 0, 0))); }
  void TearDown() override { SetFixedNow(std::nullopt); }
  LinkSigning signing{"first secret", 3600};
};

TEST_F(LinkKeys, GeneratedKeysAre32LowerHexDigitsAndDiffer) {
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    std::string key = GenerateOwnerKey();
    EXPECT_TRUE(IsOwnerKey(key)) << key;
    seen.insert(key);
  }
  EXPECT_EQ(seen.size(), 100u);
}

TEST_F(LinkKeys, SignedKeyChecksBackToTheBareKey) {
  std::string key = GenerateOwnerKey();
  EXPECT_EQ(CheckSignedKey(signing, SignKey(signing, key)), key);
}

TEST_F(LinkKeys, EmptyKeyStaysEmpty) {
  EXPECT_EQ(SignKey(signing, ""), "");
}

TEST_F(LinkKeys, BareKeyFails) {
  EXPECT_FALSE(CheckSignedKey(signing, GenerateOwnerKey()));
}

TEST_F(LinkKeys, ChangedMacDigitFails) {
  std::string token = SignKey(signing, GenerateOwnerKey());
  token.back() = token.back() == '0' ? '1' : '0';
  EXPECT_FALSE(CheckSignedKey(signing, token));
}

TEST_F(LinkKeys, ChangedExpiryFails) {
  std::string token = SignKey(signing, GenerateOwnerKey());
  size_t digit = token.find('.') + 1;
  token[digit] = token[digit] == '9' ? '8' : static_cast<char>(token[digit] + 1);
  EXPECT_FALSE(CheckSignedKey(signing, token));
}

TEST_F(LinkKeys, ExpiredTokenFails) {
  std::string key = GenerateOwnerKey();
  std::string token = SignKey(signing, key);
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(10, 59, 0)));
  EXPECT_EQ(CheckSignedKey(signing, token), key);
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(11, 0, 1)));
  EXPECT_FALSE(CheckSignedKey(signing, token));
}

TEST_F(LinkKeys, OtherSecretFails) {
  std::string token = SignKey(signing, GenerateOwnerKey());
  LinkSigning other{"second secret", 3600};
  EXPECT_FALSE(CheckSignedKey(other, token));
}

TEST_F(LinkKeys, SameSecretElsewhereAccepts) {
  std::string key = GenerateOwnerKey();
  LinkSigning twin{"first secret", 60};
  EXPECT_EQ(CheckSignedKey(twin, SignKey(signing, key)), key);
}

TEST_F(LinkKeys, MalformedTokensFail) {
  std::string key = GenerateOwnerKey();
  std::string token = SignKey(signing, key);
  for (std::string bad : {std::string(""), std::string("."), std::string(".."), key + "..",
                          key.substr(1) + token.substr(32), "X" + token.substr(1), token + "0",
                          key + ".+1" + token.substr(token.rfind('.'))}) {
    EXPECT_FALSE(CheckSignedKey(signing, bad)) << bad;
  }
}

}  // namespace
}  // namespace tidewell

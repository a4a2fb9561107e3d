#include "page/link_keys.h"

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
  static constexpr const char* kStamp = "$argon2id$v=19$m=19456,t=2,p=1$stamp";
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
  EXPECT_EQ(CheckSignedKey(signing, SignKey(signing, key, kStamp), kStamp), key);
}

TEST_F(LinkKeys, EmptyKeyStaysEmpty) {
  EXPECT_EQ(SignKey(signing, "", kStamp), "");
}

TEST_F(LinkKeys, BareKeyFails) {
  EXPECT_FALSE(CheckSignedKey(signing, GenerateOwnerKey(), kStamp));
}

TEST_F(LinkKeys, ChangedMacDigitFails) {
  std::string token = SignKey(signing, GenerateOwnerKey(), kStamp);
  token.back() = token.back() == '0' ? '1' : '0';
  EXPECT_FALSE(CheckSignedKey(signing, token, kStamp));
}

TEST_F(LinkKeys, ChangedExpiryFails) {
  std::string token = SignKey(signing, GenerateOwnerKey(), kStamp);
  size_t digit = token.find('.') + 1;
  token[digit] = token[digit] == '9' ? '8' : static_cast<char>(token[digit] + 1);
  EXPECT_FALSE(CheckSignedKey(signing, token, kStamp));
}

TEST_F(LinkKeys, ExpiredTokenFails) {
  std::string key = GenerateOwnerKey();
  std::string token = SignKey(signing, key, kStamp);
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(10, 59, 0)));
  EXPECT_EQ(CheckSignedKey(signing, token, kStamp), key);
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(11, 0, 1)));
  EXPECT_FALSE(CheckSignedKey(signing, token, kStamp));
}

TEST_F(LinkKeys, OtherSecretFails) {
  std::string token = SignKey(signing, GenerateOwnerKey(), kStamp);
  LinkSigning other{"second secret", 3600};
  EXPECT_FALSE(CheckSignedKey(other, token, kStamp));
}

TEST_F(LinkKeys, SameSecretElsewhereAccepts) {
  std::string key = GenerateOwnerKey();
  LinkSigning twin{"first secret", 60};
  EXPECT_EQ(CheckSignedKey(twin, SignKey(signing, key, kStamp), kStamp), key);
}

TEST_F(LinkKeys, AnotherStampFails) {
  // The account's password changed, or another account took its key: the link opens nothing.
  std::string key = GenerateOwnerKey();
  std::string token = SignKey(signing, key, kStamp);
  EXPECT_FALSE(CheckSignedKey(signing, token, "$argon2id$v=19$m=19456,t=2,p=1$other"));
  EXPECT_FALSE(CheckSignedKey(signing, token, ""));
}

TEST_F(LinkKeys, ReadSignedKeyTakesTheFormAndExpiryWithoutTheStamp) {
  std::string key = GenerateOwnerKey();
  std::string token = SignKey(signing, key, kStamp);
  std::optional<SignedKey> read = ReadSignedKey(token);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->key, key);
  EXPECT_EQ(read->signed_part + "." + read->mac, token);
  EXPECT_TRUE(MacMatches(signing, *read, kStamp));
  EXPECT_FALSE(MacMatches(signing, *read, "another stamp"));
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(11, 0, 1)));
  EXPECT_FALSE(ReadSignedKey(token));
}

TEST_F(LinkKeys, MalformedTokensFail) {
  std::string key = GenerateOwnerKey();
  std::string token = SignKey(signing, key, kStamp);
  for (std::string bad : {std::string(""), std::string("."), std::string(".."), key + "..",
                          key.substr(1) + token.substr(32), "X" + token.substr(1), token + "0",
                          key + ".+1" + token.substr(token.rfind('.'))}) {
    EXPECT_FALSE(CheckSignedKey(signing, bad, kStamp)) << bad;
  }
}

}  // namespace
}  // namespace tidewell

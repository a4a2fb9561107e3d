// The words after a command's name.

#include "host/command_line.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tidewell {
namespace {

// argv as main receives it, from words.
class Argv {
 public:
  explicit Argv(std::vector<std::string> words) : words_(std::move(words)) {
    for (std::string& word : words_) pointers_.push_back(word.data());
  }
  int argc() const { return static_cast<int>(pointers_.size()); }
  char** argv() { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

TEST(Arguments, RefusesAStrayWordByDefault) {
  Argv argv({"--config", "a.conf", "stray"});
  EXPECT_THROW(Arguments(argv.argc(), argv.argv(), 0), std::invalid_argument);
}

TEST(Arguments, CollectsWordsBetweenOptionsInOrder) {
  Argv argv({"admin", "--config", "a.conf", "bob", "--force", "off"});
  Arguments args(argv.argc(), argv.argv(), 0, {"help", "force"}, PositionalWords::kCollected);
  EXPECT_EQ(args.Positionals(), (std::vector<std::string>{"admin", "bob", "off"}));
  EXPECT_EQ(args.Get("config"), "a.conf");
  EXPECT_TRUE(args.Has("force"));
}

TEST(Arguments, WordsAfterTwoDashesAreWordsEvenWhenTheyLookLikeOptions) {
  Argv argv({"delete", "--force", "--", "--odd-name", "x"});
  Arguments args(argv.argc(), argv.argv(), 0, {"help", "force"}, PositionalWords::kCollected);
  EXPECT_EQ(args.Positionals(), (std::vector<std::string>{"delete", "--odd-name", "x"}));
  EXPECT_TRUE(args.Has("force"));
  EXPECT_FALSE(args.Has("odd-name"));
}

TEST(Arguments, AnOptionStillNeedsItsValueWhenWordsAreCollected) {
  Argv argv({"add", "bob", "--group"});
  EXPECT_THROW(Arguments(argv.argc(), argv.argv(), 0, {"help"}, PositionalWords::kCollected),
               std::invalid_argument);
}

TEST(Arguments, AValueThatLooksLikeAWordIsTheOptionsValue) {
  Argv argv({"add", "--group", "Crew", "bob"});
  Arguments args(argv.argc(), argv.argv(), 0, {"help"}, PositionalWords::kCollected);
  EXPECT_EQ(args.Get("group"), "Crew");
  EXPECT_EQ(args.Positionals(), (std::vector<std::string>{"add", "bob"}));
}

}  // namespace
}  // namespace tidewell

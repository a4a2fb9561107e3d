#include "host/static_assets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace tidewell {
namespace {

class StaticAssetsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // CTest runs each test in a process of its own, several at once: one folder per process.
    root_ = std::filesystem::path(::testing::TempDir()) /
            ("tidewell_assets_test_" + std::to_string(getpid()));
    std::filesystem::create_directories(root_ / "images");
    std::ofstream(root_ / "tidewell.css") << ".text { color: black; }";
    std::ofstream(root_ / "images" / "nav_line.gif", std::ios::binary) << "GIF89a";
  }
  void TearDown() override { std::filesystem::remove_all(root_); }
  std::filesystem::path root_;
};

TEST_F(StaticAssetsTest, FindsImagesUnderAnyPagesFolder) {
  StaticAssets assets = StaticAssets::Load(root_.string());
  for (const char* path :
       {"/images/nav_line.gif", "/cal/images/nav_line.gif", "/a/b/images/nav_line.gif"}) {
    const StaticAssets::Asset* asset = assets.Find(path);
    ASSERT_NE(asset, nullptr) << path;
    EXPECT_EQ(asset->content_type, "image/gif");
    EXPECT_EQ(asset->body, "GIF89a");
  }
}

TEST_F(StaticAssetsTest, FindsTheStyleSheet) {
  StaticAssets assets = StaticAssets::Load(root_.string());
  ASSERT_NE(assets.Find("/tidewell.css"), nullptr);
  ASSERT_NE(assets.Find("/cal/tidewell.css"), nullptr);
  EXPECT_EQ(assets.Find("/tidewell.css")->content_type, "text/css; charset=utf-8");
}

TEST_F(StaticAssetsTest, NothingElse) {
  StaticAssets assets = StaticAssets::Load(root_.string());
  EXPECT_EQ(assets.Find("/nav_line.gif"), nullptr);
  EXPECT_EQ(assets.Find("/images/missing.gif"), nullptr);
  EXPECT_EQ(assets.Find("/images/../tidewell.conf"), nullptr);
  EXPECT_EQ(assets.Find("/imagesx/nav_line.gif"), nullptr);
  EXPECT_EQ(assets.Find(""), nullptr);
}

TEST_F(StaticAssetsTest, MissingFolderIsReported) {
  EXPECT_THROW(StaticAssets::Load((root_ / "nowhere").string()), std::runtime_error);
}

}  // namespace
}  // namespace tidewell

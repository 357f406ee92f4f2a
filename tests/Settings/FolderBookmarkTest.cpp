#include "FennickCore/Settings/FolderBookmark.h"

#include "tests/Settings/FullSettings.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace fennick {
namespace {

using Kind = BookmarkError::Kind;

class FolderBookmarkTest : public ::testing::Test {
protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "bookmark-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  std::filesystem::path folder;
};

TEST_F(FolderBookmarkTest, ABookmarkLeadsBackToItsFolderUntilThatIsGone) {
  const auto target = folder / "旅行 \xFF"; // file names are bytes, not text
  std::filesystem::create_directory(target);
  const auto bookmark = FolderBookmark::make(target);
  ASSERT_TRUE(bookmark);

  const auto resolved = FolderBookmark::resolve(*bookmark);
  ASSERT_TRUE(resolved);
  EXPECT_EQ(resolved->url, target);
  EXPECT_FALSE(resolved->stale);

  std::filesystem::remove(target);
  const auto gone = FolderBookmark::resolve(*bookmark);
  ASSERT_FALSE(gone);
  EXPECT_EQ(gone.error().kind, Kind::notFound);
  EXPECT_EQ(gone.error().description(), "该位置已不存在");
}

TEST_F(FolderBookmarkTest, WhatDoesNotExistCannotBeBookmarked) {
  const auto missing = FolderBookmark::make(folder / "missing");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().kind, Kind::notFound);
}

TEST_F(FolderBookmarkTest, BytesThatAreNoAbsolutePathAreRefused) {
  for (const std::string_view bytes :
       {std::string_view(""), std::string_view("tmp"), std::string_view("/tmp\0", 5)}) {
    const auto resolved = FolderBookmark::resolve(test::bookmarkOf(bytes));
    ASSERT_FALSE(resolved) << bytes;
    EXPECT_EQ(resolved.error().kind, Kind::notAPath) << bytes;
  }
}

} // namespace
} // namespace fennick

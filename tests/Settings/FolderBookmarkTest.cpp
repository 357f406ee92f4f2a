#include "FennickCore/Settings/FolderBookmark.h"

#include "tests/Settings/FullSettings.h"
#include "tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace fennick {
namespace {

TEST(FolderBookmarkTest, ABookmarkLeadsBackToItsFolderUntilThatIsGone) {
  const test::TemporaryFolder disk;
  const auto target = disk.makeFolder("旅行 \xFF"); // file names are bytes, not text
  const BookmarkData bookmark = FolderBookmark::make(target).value();
  EXPECT_EQ(FolderBookmark::resolve(bookmark).value().url, target);
  std::filesystem::remove(target);
  EXPECT_EQ(FolderBookmark::resolve(bookmark).error().description(), "该位置已不存在");
  EXPECT_EQ(FolderBookmark::make(target).error().kind, BookmarkError::Kind::notFound);
  for (const std::string_view bytes :
       {std::string_view(""), std::string_view("tmp"), std::string_view("/tmp\0", 5)})
    EXPECT_EQ(FolderBookmark::resolve(test::bookmarkOf(bytes)).error().kind, BookmarkError::Kind::notAPath)
        << bytes;
}

} // namespace
} // namespace fennick

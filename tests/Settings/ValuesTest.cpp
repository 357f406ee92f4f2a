#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Settings/AccessKey.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "tests/Settings/FullSettings.h"
#include "tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace fennick {
namespace {

constexpr std::uint64_t kGreatest = std::numeric_limits<std::uint64_t>::max();

// A source that returns these words.
class Words {
public:
  explicit Words(std::vector<std::uint64_t> words) : words_(std::move(words)) {}
  std::uint64_t operator()() { return words_.at(taken_++); }

private:
  std::vector<std::uint64_t> words_;
  std::size_t taken_ = 0;
};

TEST(AccessKeyTest, RejectsRandomWordsThatWouldFavourACharacter) {
  // Each character has 1/56 of the words: the second begins at 2^64 / 56. 2^64 modulo 56 is 16: products
  // whose low half is below that are rejected, such as those of 0 and 2^61.
  EXPECT_EQ(AccessKey::generate(3, Words({kGreatest / 56, kGreatest / 56 + 1, kGreatest})), "ab9");
  EXPECT_EQ(AccessKey::generate(2, Words({0, std::uint64_t{1} << 61, kGreatest, 1})), "9a");
}

TEST(FolderBookmarkTest, ResolvesABookmarkUntilItsFolderIsGone) {
  const test::TemporaryFolder disk;
  const auto target = disk.makeFolder("旅行 \xFF"); // file names are bytes
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

TEST(ImagingOptionsTest, ClampsQualityAndFloorOnUse) {
  const auto inUse = [](double quality, double floor) {
    const ImagingOptions options{.quality = quality, .qualityFloor = floor};
    return std::pair(options.qualityInUse(), options.floorInUse());
  };
  EXPECT_EQ(inUse(0.1, 0.05), std::pair(0.3, 0.1));
  EXPECT_EQ(inUse(1.4, 0.5), std::pair(1.0, 0.5));
  EXPECT_EQ(inUse(0.7, 0.9), std::pair(0.7, 0.7));
}

} // namespace
} // namespace fennick

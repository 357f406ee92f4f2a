#include "FennickCore/Storage/FolderListings.h"

#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <functional>
#include <random>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using Operation = test::FaultyFileSystem::Operation;

class FolderListingsTest : public ::testing::Test {
protected:
  // What the listings say of the folder is what a first look at it says.
  ::testing::AssertionResult isUpToDate(const fs::path &folder) {
    const auto followed = listings.at(folder);
    FolderListings others(files);
    const auto fresh = others.at(folder);
    if (!followed || !fresh)
      return ::testing::AssertionFailure()
             << "followed " << followed.has_value() << ", fresh " << fresh.has_value();
    if ((*followed)->mediaCount() != (*fresh)->mediaCount())
      return ::testing::AssertionFailure()
             << (*followed)->mediaCount() << " photos instead of " << (*fresh)->mediaCount();
    if ((*followed)->highestNumber("IMG_") != (*fresh)->highestNumber("IMG_"))
      return ::testing::AssertionFailure() << "highest " << (*followed)->highestNumber("IMG_").value_or(-1);
    for (const char *name : kNames)
      if ((*followed)->contains(name) != (*fresh)->contains(name))
        return ::testing::AssertionFailure() << name << " is " << (*fresh)->contains(name);
    return ::testing::AssertionSuccess();
  }

  static constexpr std::array kNames{"IMG_001.jpg",  "IMG_002.HEIC", "IMG_030.mov", "IMG_004.txt",
                                     ".IMG_050.jpg", "b.png",        "IMG_040",     "IMG_notes.jpg"};
  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  FolderListings listings{files};
};

TEST_F(FolderListingsTest, OnlyVisibleRegularPhotosAndVideosCount) {
  const fs::path photos = disk.makeFolder("photos");
  for (const char *name : {"a.jpg", "b.JPEG", "c.Mov", "d.tiff", "IMG.1.hif"})
    disk.write(fmt::format("photos/{}", name));
  for (const char *name : {".hidden.jpg", "notes.txt", "jpg", ".jpg", "a.jpg.part", "a.jpg "})
    disk.write(fmt::format("photos/{}", name));
  disk.makeFolder("photos/folder.jpg");
  fs::create_symlink("a.jpg", photos / "link.jpg");
  EXPECT_EQ(listings.at(photos).value()->mediaCount(), 5);
}

TEST_F(FolderListingsTest, AFollowedFolderIsReadOnce) {
  const fs::path photos = disk.makeFolder("photos");
  for (int i = 0; i < 3; ++i) {
    disk.write(fmt::format("photos/IMG_{:03}.jpg", i));
    EXPECT_TRUE(listings.at(photos).value()->contains(fmt::format("IMG_{:03}.jpg", i)));
  }
  EXPECT_EQ(files.calls(Operation::list), 1);
}

TEST_F(FolderListingsTest, WhateverComesToStandUnderThePathIsWhatIsListed) {
  const fs::path photos = disk / "home/photos";
  const fs::path elsewhere = disk / "elsewhere";
  struct Turn {
    const char *what;
    std::function<void()> happens;
  };
  const std::vector<Turn> turns{
      {"moved away, a new one made", [&] { fs::rename(photos, elsewhere), fs::create_directory(photos); }},
      {"deleted and made anew", [&] { fs::remove_all(photos), fs::create_directory(photos); }},
      {"another moved in its place", [&] { fs::remove_all(photos), fs::rename(elsewhere, photos); }},
      {"replaced by a link to itself",
       [&] { fs::rename(photos, elsewhere), fs::create_symlink(elsewhere, photos); }},
      {"the link turned elsewhere",
       [&] { fs::remove(photos), fs::create_symlink(disk.makeFolder("third"), photos); }},
      {"the folder above exchanged",
       [&] { fs::rename(disk / "home", disk / "old"), fs::create_directories(photos); }},
  };
  fs::create_directories(photos);
  for (std::size_t turn = 0; turn < turns.size(); ++turn) {
    SCOPED_TRACE(turns[turn].what);
    std::ofstream(photos / fmt::format("IMG_{:03}.jpg", turn * 10));
    ASSERT_TRUE(isUpToDate(photos));
    turns[turn].happens();
    ASSERT_TRUE(isUpToDate(photos));
    std::ofstream(photos / "b.png");
    ASSERT_TRUE(isUpToDate(photos));
  }
}

TEST_F(FolderListingsTest, AFolderUsedUnderTwoPathsIsUpToDateUnderBoth) {
  const fs::path photos = disk.makeFolder("photos");
  const fs::path link = disk / "link";
  fs::create_symlink(photos, link);
  for (const char *name : {"IMG_001.jpg", "b.png"}) {
    ASSERT_TRUE(listings.at(photos) && listings.at(link));
    disk.write(fmt::format("photos/{}", name));
    EXPECT_TRUE(isUpToDate(link));
    EXPECT_TRUE(isUpToDate(photos));
  }
}

TEST_F(FolderListingsTest, AFolderThatIsGoneIsAnErrorUntilItIsBack) {
  const fs::path photos = disk.makeFolder("photos");
  ASSERT_TRUE(listings.at(photos));
  fs::remove(photos);
  EXPECT_EQ(listings.at(photos).error(), std::errc::no_such_file_or_directory);
  disk.write("photos");
  EXPECT_EQ(listings.at(photos).error(), std::errc::not_a_directory);
  fs::remove(photos);
  disk.write("photos/b.png");
  EXPECT_TRUE(isUpToDate(photos));
}

TEST_F(FolderListingsTest, MoreChangesThanTheKernelKeepsAreNoticedAllTheSame) {
  const fs::path photos = disk.makeFolder("photos");
  ASSERT_TRUE(listings.at(photos));
  const fs::path a = disk.write("photos/a");
  for (int i = 0; i < 10'000; ++i) { // two events each; the kernel's usual queue holds 16,384
    fs::rename(a, photos / "b");
    fs::rename(photos / "b", a);
  }
  disk.write("photos/IMG_001.jpg");
  EXPECT_TRUE(isUpToDate(photos));
}

// Five folders, one more than are kept, worked on by others at random.
TEST_F(FolderListingsTest, AfterAnySequenceOfChangesTheListingEqualsAFreshOne) {
  std::mt19937 random(20'240'501);
  const auto below = [&](std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
  };
  const auto folder = [&] { return disk / fmt::format("{}", below(5)); };
  const auto entry = [&] { return folder() / kNames[below(kNames.size())]; };
  const std::vector<std::function<void(std::error_code &)>> changes{
      [&](auto &) { std::ofstream(entry()) << "x"; },
      [&](auto &) { std::ofstream(entry()) << "x"; },
      [&](auto &error) { fs::remove_all(entry(), error); },
      [&](auto &error) { fs::rename(entry(), entry(), error); },
      [&](auto &error) { fs::create_directory(entry(), error); },
      [&](auto &error) { fs::create_symlink("b.png", entry(), error); },
      [&](auto &error) { fs::create_hard_link(entry(), entry(), error); },
      [&](auto &error) { fs::rename(folder(), folder(), error); },
      [&](auto &error) { fs::create_directory(folder(), error); },
  };
  for (int step = 0; step < 2'000; ++step) {
    std::error_code ignored;
    changes[below(changes.size())](ignored);
    const fs::path looked = folder();
    if (below(3) == 0 && fs::is_directory(looked)) {
      ASSERT_TRUE(isUpToDate(looked)) << "step " << step;
    }
  }
}

} // namespace
} // namespace fennick

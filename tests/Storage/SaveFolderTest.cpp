#include "FennickCore/Storage/FolderListings.h"
#include "FennickCore/Storage/NameAllocator.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <fstream>
#include <functional>
#include <latch>
#include <random>
#include <thread>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using Operation = test::FaultyFileSystem::Operation;

constexpr Instant kNoon{std::chrono::seconds(1'714'564'800)};

class SaveFolderTest : public ::testing::Test {
protected:
  static std::string described(FolderListings &by, const fs::path &folder) {
    const auto names = by.at(folder);
    if (!names)
      return names.error().message();
    std::string text =
        fmt::format("{} photos, {}", (*names)->mediaCount(), (*names)->highestNumber("IMG_").value_or(0));
    for (const char *name : kNames)
      text += (*names)->contains(name) ? fmt::format(" {}", name) : "";
    return text;
  }
  void expectUpToDate(const fs::path &folder) {
    FolderListings fresh(files);
    EXPECT_EQ(described(listings, folder), described(fresh, folder));
  }
  // Receives a photo. Returns its path below the save folder, or the error's message.
  std::string place(std::string_view content = "ours") {
    const auto part = disk.write(fmt::format("parts/{}", ++parts), content);
    const auto placed = allocator.place(part, destination, "jpg", kNoon);
    return placed ? placed->lexically_relative(photos).string() : placed.error().message();
  }

  static constexpr std::array kNames{"IMG_001.jpg",  "IMG_002.HEIC", "IMG_030.mov", "IMG_004.txt",
                                     ".IMG_050.jpg", "b.png",        "IMG_040",     "IMG_notes.jpg"};
  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  const fs::path photos = disk / "home/photos";
  FolderListings listings{files};
  NameAllocator allocator{files};
  SaveDestination destination{
      .folder = photos, .dateSubfolders = false, .naming = PrefixSequenceNaming{}, .subfolder = {}};
  std::atomic<int> parts = 0;
};

TEST_F(SaveFolderTest, ReadsAFolderOnceAndCountsItsMedia) {
  fs::create_directories(photos / "folder.jpg");
  fs::create_symlink("a.jpg", photos / "link.jpg");
  EXPECT_EQ(listings.at(photos).value()->mediaCount(), 0);
  for (const char *name : {"a.jpg", "b.JPEG", "c.Mov", "d.tiff", "IMG.1.hif", ".hidden.jpg", "notes.txt",
                           "jpg", ".jpg", "a.jpg.part", "a.jpg "})
    disk.write(fmt::format("home/photos/{}", name));
  EXPECT_EQ(listings.at(photos).value()->mediaCount(), 5);
  EXPECT_EQ(files.calls(Operation::list), 1);
}

TEST_F(SaveFolderTest, NoticesReplacedFolders) {
  const fs::path elsewhere = disk / "elsewhere";
  const auto moreThanTheKernelKeeps = [&] { // two events each; its usual queue holds 16,384
    for (int i = 0; i < 10'000; ++i)
      fs::rename(photos / "IMG_000.jpg", photos / "b"), fs::rename(photos / "b", photos / "IMG_000.jpg");
  };
  const std::vector<std::function<void()>> turns{
      moreThanTheKernelKeeps,
      [&] { fs::rename(photos, elsewhere), fs::create_directory(photos); },
      [&] { fs::remove_all(photos), fs::rename(elsewhere, photos); },
      [&] { fs::rename(photos, elsewhere), fs::create_symlink(elsewhere, photos); },
      [&] { fs::rename(disk / "home", disk / "old"), fs::create_directories(photos); },
      [&] { fs::remove_all(photos); },
  };
  for (std::size_t turn = 0; turn < turns.size(); ++turn) {
    SCOPED_TRACE(turn);
    disk.write(fmt::format("home/photos/IMG_{:03}.jpg", turn * 10));
    expectUpToDate(photos);
    turns[turn]();
    expectUpToDate(photos);
  }
  EXPECT_EQ(listings.at(photos).error(), std::errc::no_such_file_or_directory);
}

// Five folders, one more than are kept, and links to them, changed at random.
TEST_F(SaveFolderTest, KeepsTheListingEqualToAFreshOne) {
  std::mt19937 random(20'240'501);
  const auto below = [&](std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
  };
  const auto folder = [&] { return disk / fmt::format("{}", below(5)); };
  const auto entry = [&] { return folder() / kNames[below(kNames.size())]; };
  const std::vector<std::function<void(std::error_code &)>> changes{
      [&](auto &) { std::ofstream(entry()) << "x"; },
      [&](auto &error) { fs::remove_all(entry(), error); },
      [&](auto &error) { fs::rename(entry(), entry(), error); },
      [&](auto &error) { fs::create_directory(entry(), error); },
      [&](auto &error) { fs::create_symlink("b.png", entry(), error); },
      [&](auto &error) { fs::rename(folder(), folder(), error); },
      [&](auto &error) { fs::create_directory(folder(), error); },
      [&](auto &error) { fs::create_symlink(folder(), folder(), error); },
  };
  for (int step = 0; step < 2'000; ++step) {
    std::error_code ignored;
    changes[below(changes.size())](ignored);
    SCOPED_TRACE(step);
    expectUpToDate(folder());
  }
}

TEST_F(SaveFolderTest, NeverReplacesFilesThatAppearBeforeTheMove) {
  int taken = 0;
  files.before(Operation::moveNoReplace,
               [&] { disk.write(fmt::format("home/photos/IMG_{:03}.jpg", ++taken)); });
  EXPECT_EQ(place(), std::make_error_code(std::errc::file_exists).message());
  EXPECT_EQ(taken, 100);
  EXPECT_EQ(disk.read("parts/1"), "ours");
  EXPECT_EQ(disk.read("home/photos/IMG_100.jpg"), "content");
  const std::string second = localSecondText(kNoon);
  destination.naming = TimestampNaming{};
  files.before(Operation::moveNoReplace, [&] { disk.write("home/photos/" + second + ".jpg"); });
  EXPECT_EQ(place(), second + "_2.jpg");
}

TEST_F(SaveFolderTest, NeverReusesNumbers) {
  EXPECT_EQ(place(), "IMG_001.jpg");
  fs::remove_all(photos);
  files.failNext(Operation::syncDirectory, EIO);
  EXPECT_EQ(place("lost"), std::make_error_code(std::errc::io_error).message());
  EXPECT_EQ(disk.read("parts/2"), "lost");
  EXPECT_THAT(disk.names("home/photos"), ::testing::IsEmpty());
  EXPECT_EQ(allocator.mediaCount(photos), 0);
  EXPECT_EQ(place(), "IMG_003.jpg");
}

TEST_F(SaveFolderTest, ReusesTheNameOfAPhotoThatCouldNotBeMoved) {
  destination.naming = TimestampNaming{};
  files.failNext(Operation::moveNoReplace, EIO);
  EXPECT_EQ(place(), std::make_error_code(std::errc::io_error).message());
  EXPECT_EQ(place(), localSecondText(kNoon) + ".jpg");
}

TEST_F(SaveFolderTest, GivesDistinctNamesToSimultaneousPhotos) {
  constexpr std::size_t kThreads = 8;
  for (const NamingPolicy &naming : {NamingPolicy(PrefixSequenceNaming{}), NamingPolicy(TimestampNaming{})}) {
    destination.naming = naming;
    destination.subfolder = std::to_string(naming.index());
    std::latch begin(kThreads);
    std::vector<std::string> placed(kThreads * 20);
    {
      std::vector<std::jthread> threads;
      for (std::size_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
          begin.arrive_and_wait();
          for (std::size_t photo = thread; photo < placed.size(); photo += kThreads)
            placed[photo] = place(std::to_string(photo));
        });
    }
    for (std::size_t photo = 0; photo < placed.size(); ++photo)
      EXPECT_EQ(disk.read("home/photos/" + placed[photo]), std::to_string(photo));
    EXPECT_EQ(allocator.mediaCount(destination.directory(kNoon)), std::ssize(placed));
  }
}

} // namespace
} // namespace fennick

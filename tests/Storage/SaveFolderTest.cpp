#include "FennickCore/Storage/FolderListings.h"
#include "FennickCore/Storage/NameAllocator.h"
#include "FennickCore/Storage/NameGenerator.h"
#include "FennickCore/Storage/SaveDestination.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <latch>
#include <optional>
#include <random>
#include <thread>
#include <tuple>

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
  files.failNext(Operation::moveNoReplace, EIO);
  EXPECT_EQ(place(), std::make_error_code(std::errc::io_error).message());
  EXPECT_EQ(place(), second + "_3.jpg") << "the name of the failed photo is free again";
}

TEST_F(SaveFolderTest, NeverReusesNumbersAndStaysInsideTheFolder) {
  destination.subfolder = "a/../../trip";
  EXPECT_EQ(place(), "IMG_001.jpg");
  fs::remove_all(photos);
  files.failNext(Operation::syncDirectory, EIO);
  EXPECT_EQ(place("lost"), std::make_error_code(std::errc::io_error).message());
  EXPECT_EQ(disk.read("parts/2"), "lost");
  EXPECT_THAT(disk.names("home/photos"), ::testing::IsEmpty());
  EXPECT_EQ(allocator.mediaCount(photos), 0);
  EXPECT_EQ(place(), "IMG_003.jpg");
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

TEST(NameGeneratorTest, ContinuesSequenceNamesAfterTheHighestNumber) {
  using Names = std::vector<std::string>;
  const std::tuple<std::string, PrefixSequenceNaming, Names, std::optional<int>, std::string> table[] = {
      {"notes are no number", {}, {"IMG_7.jpg", "IMG_notes.jpg", "IMG_9.tar.gz"}, {}, "IMG_008.jpg"},
      {"every extension takes its number", {}, {"IMG_001.mov", "IMG_005"}, {}, "IMG_006.jpg"},
      {"other stems do not count", {}, {"IMG-900.jpg", "img_800.jpg", "XIMG_700.jpg"}, {}, "IMG_001.jpg"},
      {"deleted files cause no reuse", {}, {}, 41, "IMG_042.jpg"},
      {"the folder may be ahead of what was given out", {}, {"IMG_100.jpg"}, 41, "IMG_101.jpg"},
      {"a higher start is obeyed", {.start = 100}, {"IMG_007.jpg"}, 41, "IMG_100.jpg"},
      {"a negative start is none", {.start = -5}, {}, {}, "IMG_000.jpg"},
      {"a start past counting is held down", {.start = INT64_MAX}, {}, {}, "IMG_1000000000000000.jpg"},
      {"at least one digit", {.digits = 0}, {}, {}, "IMG_1.jpg"},
      {"at most nine digits", {.digits = 12}, {}, {}, "IMG_000000001.jpg"},
      {"padding does not hide a number", {}, {"IMG_0000012.jpg"}, {}, "IMG_013.jpg"},
      {"eighteen digits go on", {}, {"IMG_999999999999999999.jpg"}, {}, "IMG_1000000000000000000.jpg"},
      {"past 64 bits", {}, {"IMG_9223372036854775807", "IMG_99999999999999999999"}, {}, "IMG_001.jpg"},
      {"no prefix at all", {.prefix = "", .separator = ""}, {"7.jpg"}, {}, "008.jpg"},
      {"no slash stays", {.prefix = "../etc/", .separator = "/"}, {}, {}, "-.-etc--001.jpg"},
      {"a NUL does not cut the name", {.prefix = {'A', 0, 'B'}}, {}, {}, "AB_001.jpg"},
  };
  for (const auto &[rule, naming, names, last, next] : table) {
    TakenNames taken;
    for (const auto &name : names)
      taken.insert(name, FileKind::regular);
    EXPECT_EQ(NameGenerator::generate(naming, kNoon, "jpg", taken, last).name, next) << rule;
  }
}

TEST(SaveDestinationTest, ChangesTheDayAtLocalMidnight) {
  constexpr Instant kLastSecondOfApril{std::chrono::seconds(1'714'521'599)}; // 2024-04-30 23:59:59 UTC
  const SaveDestination trip{.folder = "/p", .dateSubfolders = true, .naming = {}, .subfolder = "trip"};
  using Strings = std::array<const char *, 3>;
  for (const auto &[zone, before, after] : {Strings{"CST-8", "/p/2024-05-01/trip", "/p/2024-05-01/trip"},
                                            Strings{"EST5", "/p/2024-04-30/trip", "/p/2024-04-30/trip"},
                                            Strings{"UTC0", "/p/2024-04-30/trip", "/p/2024-05-01/trip"}}) {
    ::setenv("TZ", zone, 1);
    EXPECT_EQ(trip.directory(kLastSecondOfApril), before) << zone;
    EXPECT_EQ(trip.directory(kLastSecondOfApril + std::chrono::seconds(1)), after) << zone;
  }
  EXPECT_EQ(localSecondText(kLastSecondOfApril + std::chrono::nanoseconds(999'999'999)), "20240430_235959");
  EXPECT_EQ(localSecondText(Instant(std::chrono::nanoseconds(-1))), "19691231_235959");
  ::unsetenv("TZ");
}

} // namespace
} // namespace fennick

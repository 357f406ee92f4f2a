#include "FennickCore/Storage/NameAllocator.h"

#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <latch>
#include <map>
#include <thread>

namespace fennick {
namespace {

using test::FaultyFileSystem;
using Operation = FaultyFileSystem::Operation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Instant kNoon{std::chrono::seconds(1'714'564'800)};

class NameAllocatorTest : public ::testing::Test {
protected:
  // Receives a photo; the path it got below the save folder, or the error's message.
  std::string place(std::string_view content = "ours", Instant at = kNoon) {
    const auto part = disk.write(fmt::format("parts/{}", ++parts_), content);
    const auto placed = allocator.place(part, destination, "jpg", at);
    return placed ? placed->lexically_relative(destination.folder).string() : placed.error().message();
  }

  test::TemporaryFolder disk;
  FaultyFileSystem files;
  NameAllocator allocator{files};
  SaveDestination destination{
      .folder = disk / "photos", .dateSubfolders = false, .naming = PrefixSequenceNaming{}, .subfolder = {}};

private:
  int parts_ = 0;
};

TEST_F(NameAllocatorTest, NumbersOfDeletedFilesAreNotUsedAgain) {
  EXPECT_EQ(place(), "IMG_001.jpg");
  EXPECT_EQ(place(), "IMG_002.jpg");
  std::filesystem::remove_all(disk / "photos");
  EXPECT_EQ(place(), "IMG_003.jpg");
}

TEST_F(NameAllocatorTest, EachFolderAndEachStemHasNumbersOfItsOwn) {
  EXPECT_EQ(place(), "IMG_001.jpg");
  destination.naming = PrefixSequenceNaming{.prefix = "DSC"};
  EXPECT_EQ(place(), "DSC_001.jpg");
  destination.subfolder = "trip";
  EXPECT_EQ(place(), "trip/DSC_001.jpg");
  destination.dateSubfolders = true;
  const std::string today = place("ours", kNoon);
  const std::string tomorrow = place("ours", kNoon + std::chrono::hours(24));
  EXPECT_NE(today, tomorrow);
  EXPECT_TRUE(today.ends_with("/trip/DSC_001.jpg") && tomorrow.ends_with("/trip/DSC_001.jpg")) << tomorrow;
}

TEST_F(NameAllocatorTest, AFileThatAppearsJustBeforeTheMoveIsNeverReplaced) {
  const std::string second = localSecondText(kNoon);
  for (const auto &[naming, theirs, ours] : {std::tuple<NamingPolicy, std::string, std::string>{
                                                 PrefixSequenceNaming{}, "IMG_001.jpg", "IMG_002.jpg"},
                                             {TimestampNaming{}, second + ".jpg", second + "_2.jpg"}}) {
    destination.naming = naming;
    files.before(Operation::moveNoReplace, [&] { disk.write("photos/" + theirs, "theirs"); });
    EXPECT_EQ(place("ours"), ours);
    EXPECT_EQ(disk.read("photos/" + theirs), "theirs");
    EXPECT_EQ(disk.read("photos/" + ours), "ours");
  }
}

TEST_F(NameAllocatorTest, AfterAHundredNamesTakenByOthersThePartFileIsStillThere) {
  int taken = 0;
  files.before(Operation::moveNoReplace,
               [&] { disk.write(fmt::format("photos/IMG_{:03}.jpg", ++taken), "theirs"); });
  EXPECT_EQ(place(), std::make_error_code(std::errc::file_exists).message());
  EXPECT_EQ(taken, 100);
  EXPECT_EQ(disk.read("parts/1"), "ours");
  files.before(Operation::moveNoReplace, {});
  EXPECT_EQ(place(), "IMG_101.jpg");
}

TEST_F(NameAllocatorTest, WhateverFailsThePartFileIsBackAndTheNextPhotoIsSaved) {
  for (const auto operation :
       {Operation::createDirectories, Operation::list, Operation::moveNoReplace, Operation::syncDirectory}) {
    SCOPED_TRACE(static_cast<int>(operation));
    destination.folder = disk.makeFolder(fmt::format("photos{}", static_cast<int>(operation)));
    files.failNext(operation, EIO);
    EXPECT_EQ(place("lost"), std::make_error_code(std::errc::io_error).message());
    EXPECT_THAT(disk.names(destination.folder.filename().string()), IsEmpty());
    EXPECT_EQ(allocator.mediaCount(destination.folder), 0);
    EXPECT_EQ(place("next").substr(0, 4), "IMG_");
  }
  EXPECT_THAT(disk.names("parts"), ElementsAre("1", "3", "5", "7"));
}

TEST_F(NameAllocatorTest, PhotosPlacedAtOnceGetDistinctNamesAndStayWhole) {
  constexpr int kThreads = 8;
  constexpr int kEach = 20;
  for (const NamingPolicy &naming : {NamingPolicy(PrefixSequenceNaming{}), NamingPolicy(TimestampNaming{})}) {
    destination.naming = naming;
    destination.folder = disk / fmt::format("photos{}", naming.index());
    std::latch begin(kThreads);
    std::vector<std::map<std::string, std::string>> placed(kThreads);
    {
      std::vector<std::jthread> threads;
      for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
          begin.arrive_and_wait();
          for (int i = 0; i < kEach; ++i) {
            const std::string content = fmt::format("{} of {}", i, thread);
            const auto part = disk.write(fmt::format("parts/{}", content), content);
            const auto path = allocator.place(part, destination, "jpg", kNoon);
            placed[static_cast<std::size_t>(thread)].emplace(path ? path->filename().string() : "", content);
          }
        });
    }
    std::map<std::string, std::string> all;
    for (const auto &some : placed)
      all.insert(some.begin(), some.end());
    EXPECT_EQ(all.size(), kThreads * kEach);
    for (const auto &[name, content] : all)
      EXPECT_EQ(disk.read((destination.folder / name).lexically_relative(disk.path()).string()), content);
    EXPECT_EQ(allocator.mediaCount(destination.folder), kThreads * kEach);
  }
}

} // namespace
} // namespace fennick

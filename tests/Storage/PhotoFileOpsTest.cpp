#include "FennickCore/Storage/PhotoFileOps.h"

#include "FennickCore/Platform/FileStatus.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <set>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using Operation = test::FaultyFileSystem::Operation;
using PhotoFileOps::OpError;
using PhotoFileOps::QuarterTurn;

class PhotoFileOpsTest : public ::testing::Test {
protected:
  // The new name, or what a person reads.
  std::string rename(const fs::path &file, std::string_view name) {
    const auto renamed = PhotoFileOps::rename(file, name, files);
    return renamed ? renamed->filename().string() : renamed.error().description();
  }
  std::vector<std::string> contents() {
    std::vector<std::string> all;
    for (const auto &entry : fs::directory_iterator(disk.path()))
      if (entry.is_regular_file())
        all.push_back(disk.read(entry.path().filename().string()));
    std::ranges::sort(all);
    return all;
  }
  // Four photos whose new names are those of one another: 1.jpg becomes 2.jpg, and so on.
  std::vector<fs::path> exchanged() {
    std::vector<fs::path> selection;
    for (const char *name : {"2.jpg", "1.jpg", "4.jpg", "3.jpg"})
      selection.push_back(disk.write(name, name));
    return selection;
  }
  auto renumber(const std::vector<fs::path> &selection) {
    return PhotoFileOps::batchRename(selection, {.prefix = "", .digits = 1, .start = 1}, files);
  }
  // From the nth move on, every move of so many fails.
  void breakMoves(int first, int count) {
    calls = 0;
    files.mend(Operation::moveNoReplace);
    const auto breakOrMend = [this, first, count] {
      ++calls; // of the call that is under way
      if (calls + 1 == first)
        files.failAlways(Operation::moveNoReplace, EIO);
      if (calls + 1 == first + count)
        files.mend(Operation::moveNoReplace);
    };
    files.before(Operation::moveNoReplace, breakOrMend);
    if (first == 1)
      files.failAlways(Operation::moveNoReplace, EIO);
  }
  static PictureFacts oriented(std::optional<std::int64_t> orientation) {
    PictureFacts facts;
    facts.orientation = orientation;
    return facts;
  }
  std::string rotate(const fs::path &file, QuarterTurn turn = QuarterTurn::clockwise) {
    const auto rotated = PhotoFileOps::rotate(file, turn, decoder, files);
    return rotated ? file.filename().string() + " " + disk.read(file.filename().string())
                   : rotated.error().description();
  }

  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  test::FakeDecoder decoder;
  int calls = 0;
};

TEST_F(PhotoFileOpsTest, ANameIsTrimmedCheckedAndKeepsItsExtensionAndNobodyElsesIsTaken) {
  const auto photo = disk.write("a.JPG", "a");
  disk.write("b.JPG", "b");
  for (const char *bad : {"", " \t\n", ".x", "a/b", "a:b", "..", "\u3000.x", "../a"})
    EXPECT_EQ(rename(photo, bad), "文件名不合法") << bad;
  EXPECT_EQ(rename(photo, std::string("a\0b", 3)), "文件名不合法");
  EXPECT_EQ(rename(photo, "b"), "已存在同名文件：b.JPG");
  EXPECT_EQ(rename(photo, std::string(252, 'x')),
            std::make_error_code(std::errc::filename_too_long).message());
  EXPECT_EQ(rename(photo, " a "), "a.JPG");
  EXPECT_THAT(disk.names(), ElementsAre("a.JPG", "b.JPG"));
  EXPECT_EQ(rename(photo, "\n\u3000\u00A0 海边 1\u2028\t"), "海边 1.JPG");
  EXPECT_EQ(rename(disk / "海边 1.JPG", "\xFF\xFE "), "\xFF\xFE.JPG");
  EXPECT_EQ(disk.read("\xFF\xFE.JPG"), "a");
  EXPECT_EQ(rename(photo, "c"), std::make_error_code(std::errc::no_such_file_or_directory).message());
}

TEST_F(PhotoFileOpsTest, ABatchCountsUpPassesOverOthersAndGoesAcrossFoldersAndLongNames) {
  const std::string longName = std::string(240, 'x') + ".jpg";
  const std::vector selection{disk.write("b.jpg", "first"), disk.write("sub/trip-09.png", "second"),
                              disk.write(longName, "third")};
  disk.write("trip-08.jpg", "foreign");
  disk.write("trip-10.jpg", "foreign");
  const auto renamed =
      PhotoFileOps::batchRename(selection, {.prefix = "trip-", .digits = 2, .start = 8}, files);
  ASSERT_TRUE(renamed) << renamed.error().description();
  EXPECT_THAT(*renamed, ElementsAre(disk / "trip-09.jpg", disk / "sub/trip-10.png", disk / "trip-11.jpg"));
  EXPECT_THAT(contents(), ElementsAre("first", "foreign", "foreign", "third"));
  for (const char *bad : {".x", "a/", "a:", "../"})
    EXPECT_EQ(PhotoFileOps::batchRename(*renamed, {.prefix = bad}, files).error().kind,
              OpError::Kind::invalidName);
}

TEST_F(PhotoFileOpsTest, NamesAreExchangedAndAtEveryStepEachPhotoIsThereUnderATellingName) {
  const auto selection = exchanged();
  const auto all = contents();
  files.before(Operation::moveNoReplace, [&] {
    EXPECT_EQ(contents(), all);
    for (const auto &name : disk.names()) // as it was, as it will be, or a UUID and as it was
      EXPECT_TRUE(name.size() == 5 || name.substr(36) == "-" + disk.read(name)) << name;
  });
  ASSERT_TRUE(renumber(selection));
  EXPECT_EQ(disk.read("1.jpg") + disk.read("2.jpg") + disk.read("3.jpg") + disk.read("4.jpg"),
            "2.jpg1.jpg4.jpg3.jpg");
}

TEST_F(PhotoFileOpsTest, ABatchThatFailsAtAnyStepIsUndoneOrSaysWhatEachFileIsCalled) {
  const auto selection = exchanged();
  for (int step = 1; step <= 8; ++step)
    for (int count = 1; count <= step; ++count) {
      SCOPED_TRACE(fmt::format("{} failures from move {}", count, step));
      breakMoves(step, count);
      const auto error = renumber(selection).error();
      EXPECT_EQ(error.kind, count == 1 ? OpError::Kind::system : OpError::Kind::partlyRenamed);
      std::set<std::string> expected{"1.jpg", "2.jpg", "3.jpg", "4.jpg"};
      for (const auto &[from, to] : error.left) {
        expected.erase(from.filename());
        EXPECT_EQ(disk.read(to.filename().string()), from.filename());
        EXPECT_THAT(error.description(), ::testing::HasSubstr(to.filename().string()));
      }
      for (const auto &[from, to] : error.left)
        expected.insert(to.filename());
      EXPECT_THAT(disk.names(), ::testing::ElementsAreArray(expected));
      files.before(Operation::moveNoReplace, nullptr);
      files.mend(Operation::moveNoReplace);
      for (const auto &[from, to] : error.left)
        fs::rename(to, disk / ("aside-" + from.filename().string()));
      for (const auto &[from, to] : error.left)
        fs::rename(disk / ("aside-" + from.filename().string()), from);
      for (const auto &file : selection)
        ASSERT_EQ(disk.read(file.filename().string()), file.filename());
    }
}

TEST_F(PhotoFileOpsTest, AQuarterTurnGoesRoundTheEightOrientations) {
  const auto photo = disk.write("a.jpg");
  constexpr std::array<std::int64_t, 8> kClockwise{6, 7, 8, 5, 2, 3, 4, 1};
  for (std::int64_t now = 1; now <= 8; ++now) {
    const auto next = kClockwise.at(static_cast<std::size_t>(now - 1));
    decoder.setFacts(oriented(now));
    EXPECT_EQ(rotate(photo), fmt::format("a.jpg turned {}", next));
    decoder.setFacts(oriented(next));
    EXPECT_EQ(rotate(photo, QuarterTurn::anticlockwise), fmt::format("a.jpg turned {}", now));
  }
  for (const std::int64_t odd : {0L, 9L, -1L, INT64_MAX}) {
    decoder.setFacts(oriented(odd));
    EXPECT_EQ(rotate(photo), "a.jpg turned 6");
    EXPECT_EQ(rotate(photo, QuarterTurn::anticlockwise), "a.jpg turned 6");
  }
  decoder.setFacts(oriented(std::nullopt));
  EXPECT_EQ(rotate(photo, QuarterTurn::anticlockwise), "a.jpg turned 8");
}

TEST_F(PhotoFileOpsTest, ATurnedPictureKeepsItsModeAndItsPlaceAndIsOneSecondNewer) {
  const auto photo = disk.write("a.jpg");
  ASSERT_TRUE(setPermissions(photo, 0640));
  ASSERT_TRUE(setModificationTime(photo, Instant(std::chrono::milliseconds(7'900))));
  EXPECT_EQ(rotate(photo), "a.jpg turned 6");
  EXPECT_EQ(fileStatus(photo)->permissions, 0640U);
  EXPECT_EQ(fileStatus(photo)->created(), Instant(std::chrono::seconds(8)));
}

TEST_F(PhotoFileOpsTest, WhateverGoesWrongTheOldPictureStaysAndNothingBesideIt) {
  const auto photo = disk.write("a.jpg", "old");
  fs::create_symlink(photo, disk / "link.jpg");
  const auto expectUntouched = [&](const char *said, const fs::path &file) {
    EXPECT_EQ(rotate(file), said);
    EXPECT_EQ(disk.read("a.jpg"), "old");
    EXPECT_THAT(disk.names(), ElementsAre("a.jpg", "link.jpg"));
  };
  expectUntouched("不是图片文件", disk / "link.jpg");
  expectUntouched("不是图片文件", disk / "gone.jpg");
  for (const auto operation :
       {Operation::createFile, Operation::write, Operation::sync, Operation::close, Operation::replace}) {
    files.failNext(operation, ENOSPC);
    expectUntouched("写入失败", photo);
  }
  using enum PictureFault;
  for (const auto fault : {unreadable, notAPicture, undecodable, unsupported, crashed, timedOut, noDecoder}) {
    decoder.setFacts(decoder.kFault(fault));
    expectUntouched(fault <= undecodable ? "不是图片文件" : "写入失败", photo);
  }
  decoder.setFacts(PictureFacts{});
  decoder.setOriented(decoder.kFault(unsupported));
  expectUntouched("写入失败", photo);

  decoder.setOriented("turned ");
  files.before(Operation::sync, [&] { disk.write("a.jpg", "edited meanwhile"); });
  EXPECT_EQ(rotate(photo), "写入失败");
  EXPECT_EQ(disk.read("a.jpg"), "edited meanwhile");
}

} // namespace
} // namespace fennick

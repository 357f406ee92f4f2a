#include "FennickCore/Storage/PhotoFileOps.h"
#include "FennickCore/Storage/BatchRename.h"
#include "FennickCore/Storage/PhotoOrigin.h"
#include "FennickCore/Storage/PhotoRotation.h"

#include "FennickCore/Platform/Files/FileAttributes.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <map>
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
  // Returns the new name, or the message for the user.
  std::string rename(const fs::path &file, std::string_view name) {
    const auto renamed = PhotoFileOps::rename(file, name, files);
    return renamed ? renamed->filename().string() : renamed.error().description();
  }
  // Lets `count` moves fail from the nth on. Before each, every photo exists under its old or new name, or
  // its old one after a UUID.
  void breakMoves(int first, int count, const fs::path &folder) {
    const auto prepareNext = [this, first, count] {
      if (++call >= first && call < first + count)
        files.failNext(Operation::moveNoReplace, EIO);
    };
    call = 0;
    files.mend(Operation::moveNoReplace);
    prepareNext();
    files.before(Operation::moveNoReplace, [this, prepareNext, folder] {
      prepareNext();
      std::set<std::string> photos;
      for (const auto &name : disk.names(folder.filename().string())) {
        const auto photo = *photos.insert(disk.read((folder.filename() / name).string())).first;
        EXPECT_TRUE(name.size() == 5 || name.substr(36) == "-" + photo) << name;
      }
      EXPECT_EQ(photos.size(), 4U);
    });
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
  int call = 0; // of a move
};

TEST_F(PhotoFileOpsTest, RenamesWithATrimmedNameAndItsExtension) {
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

TEST_F(PhotoFileOpsTest, NumbersABatchAcrossFoldersAndSkipsTakenNumbers) {
  const std::string longName = std::string(240, 'x') + ".jpg";
  const std::vector selection{disk.write("b.jpg", "first"), disk.write("sub/trip-09.png", "second"),
                              disk.write(longName, "third")};
  disk.write("trip-08.jpg", "foreign");
  disk.write("trip-10.jpg", "foreign");
  const auto renamed =
      PhotoFileOps::batchRename(selection, {.prefix = "trip-", .digits = 2, .start = 8}, files);
  ASSERT_TRUE(renamed) << renamed.error().description();
  EXPECT_THAT(*renamed, ElementsAre(disk / "trip-09.jpg", disk / "sub/trip-10.png", disk / "trip-11.jpg"));
  EXPECT_EQ(disk.read("trip-09.jpg") + disk.read("sub/trip-10.png") + disk.read("trip-11.jpg"),
            "firstsecondthird");
  const std::vector<Renaming> back{{(*renamed)[0], selection[0]}, {(*renamed)[2], selection[2]}};
  EXPECT_TRUE(PhotoFileOps::renameAll(back, files));
  EXPECT_EQ(disk.read("b.jpg") + disk.read(longName), "firstthird");
  for (const char *bad : {".x", "a/", "a:", "../"})
    EXPECT_EQ(PhotoFileOps::batchRename(*renamed, {.prefix = bad}, files).error().kind,
              OpError::Kind::invalidName);
}

TEST_F(PhotoFileOpsTest, PredictsNamesAndRestoresThemAfterAStop) {
  const std::vector selection{disk.write("2.jpg", "first"), disk.write("1.jpg", "second")};
  disk.write("4.jpg", "foreign");
  const PhotoFileOps::Numbering numbering{.prefix = "", .digits = 1, .start = 3};
  const auto names = PhotoFileOps::numberedNames(selection, numbering, files);
  EXPECT_THAT(names.value(),
              ElementsAre(Renaming{selection[0], disk / "3.jpg"}, Renaming{selection[1], disk / "5.jpg"}));
  EXPECT_EQ(PhotoFileOps::numberedNames(selection, {.prefix = std::string(255, 'x')}, files).error().cause,
            std::errc::filename_too_long);
  for (const double last : {0.0, 0.25, 0.5, 0.75}) {
    const auto stopped =
        PhotoFileOps::batchRename(selection, numbering, files, [&](double share) { return share < last; });
    EXPECT_EQ(stopped.error().cause, std::errc::operation_canceled);
    EXPECT_THAT(disk.names(), ElementsAre("1.jpg", "2.jpg", "4.jpg")) << last;
  }
  const auto renamed = PhotoFileOps::batchRename(selection, numbering, files);
  EXPECT_THAT(renamed.value(), ElementsAre((*names)[0].to, (*names)[1].to));
}

// Exchanges names and lets moves fail from each step on: the batch's own, then the undo.
TEST_F(PhotoFileOpsTest, UndoesAFailedBatchOrReportsTheNames) {
  const std::vector<std::string> names{"1.jpg", "2.jpg", "3.jpg", "4.jpg"};
  for (int step = 1; step <= 9; ++step)
    for (int count = 1; count <= step; ++count) {
      SCOPED_TRACE(fmt::format("{} failures from move {}", count, step));
      std::vector<fs::path> selection;
      for (const char *name : {"2.jpg", "1.jpg", "4.jpg", "3.jpg"})
        selection.push_back(disk.write(fmt::format("{}-{}/{}", step, count, name), name));
      breakMoves(step, count, selection.front().parent_path());
      const auto renamed =
          PhotoFileOps::batchRename(selection, {.prefix = "", .digits = 1, .start = 1}, files);
      std::map<std::string, std::string> expected; // the name of each photo
      for (const auto &name : names)
        expected[name] = name;
      if (step == 9) {
        expected = {{"2.jpg", "1.jpg"}, {"1.jpg", "2.jpg"}, {"4.jpg", "3.jpg"}, {"3.jpg", "4.jpg"}};
      } else {
        ASSERT_FALSE(renamed);
        const auto &error = renamed.error();
        EXPECT_EQ(error.kind, count == 1 ? OpError::Kind::system : OpError::Kind::partlyRenamed);
        for (const auto &[from, to] : error.left) {
          expected[from.filename()] = to.filename();
          EXPECT_THAT(error.description(), ::testing::HasSubstr(to.filename().string()));
        }
      }
      for (const auto &[photo, name] : expected)
        EXPECT_EQ(disk.read(fmt::format("{}-{}/{}", step, count, name)), photo);
    }
}

TEST_F(PhotoFileOpsTest, RotatesAllOrientationsAndKeepsPermissionsAndPlace) {
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
  ASSERT_TRUE(setPermissions(photo, 0640));
  ASSERT_TRUE(setModificationTime(photo, Instant(std::chrono::milliseconds(7'900))));
  EXPECT_EQ(rotate(photo, QuarterTurn::anticlockwise), "a.jpg turned 8");
  EXPECT_EQ(fileStatus(photo)->permissions, 0640U);
  EXPECT_EQ(fileStatus(photo)->created(), Instant(std::chrono::seconds(8)));
}

TEST_F(PhotoFileOpsTest, KeepsTheOldPictureIfRotationFails) {
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

class PhotoOriginTest : public testing::Test {
protected:
  void SetUp() override {
    if (!setFileAttribute(photo, "user.test", "1"))
      GTEST_SKIP() << "the folder's file system has no extended attributes";
  }

  test::TemporaryFolder folder;
  fs::path photo = folder.write("a.jpg");
  const PhotoOrigin origin{.address = "192.168.1.5",
                           .name = "IMG_7.HEIC",
                           .receivedAt = Instant(std::chrono::seconds(1'714'527'000)),
                           .note = "3.2 MB → 1600px · q85",
                           .original = "20240501_093000.heic"};
};

TEST_F(PhotoOriginTest, KeepsTheRecordThroughRenamingAndRotation) {
  EXPECT_EQ(readOrigin(photo), std::nullopt);
  writeOrigin(photo, origin);
  EXPECT_EQ(readOrigin(photo), origin);

  SystemFileSystem files;
  const auto renamed = PhotoFileOps::rename(photo, "b", files).value();
  test::FakeDecoder decoder;
  ASSERT_TRUE(PhotoFileOps::rotate(renamed, PhotoFileOps::QuarterTurn::clockwise, decoder, files));
  EXPECT_EQ(folder.read("b.jpg"), "turned 6");
  EXPECT_EQ(readOrigin(renamed), origin);
  EXPECT_EQ(fileAttribute(renamed, "user.test"), "1"); // attributes of other programs stay
}

TEST_F(PhotoOriginTest, CleansOrIgnoresForeignRecords) {
  const std::vector<std::string> none{"",
                                      "no record",
                                      "[]",
                                      "{}",
                                      R"({"received":-1})",
                                      R"({"received":"1714527000"})",
                                      "{\"note\"",
                                      R"({"received":1e30})",
                                      R"({"received":1714527000,"name":7})"};
  for (const auto &text : none) {
    ASSERT_TRUE(setFileAttribute(photo, "user.fennick.origin", text));
    EXPECT_EQ(readOrigin(photo), std::nullopt) << text;
  }
  const std::string hostile = R"({"received":1,"name":"a\nb\u001b[2J)" + std::string(2'000, 'x') + "\"}";
  ASSERT_TRUE(setFileAttribute(photo, "user.fennick.origin", hostile));
  const auto read = readOrigin(photo);
  ASSERT_TRUE(read);
  EXPECT_THAT(read->name, testing::StartsWith("a b [2Jxxx"));
  EXPECT_EQ(read->name.size(), kMostOriginText);
}

TEST_F(PhotoOriginTest, FindsOriginalsOnlyInTheirFolder) {
  const auto kept = folder.write("originals/" + origin.original);
  folder.write("secret");
  EXPECT_EQ(keptOriginal(photo, origin), kept);
  for (const char *name : {"../secret", "", ".", "gone.heic"})
    EXPECT_EQ(keptOriginal(photo, {.original = name}), std::nullopt) << name;
}

} // namespace
} // namespace fennick

#include "FennickCore/Upload/IncomingFolder.h"

#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class IncomingFolderTest : public ::testing::Test {
protected:
  // What a run that was killed leaves behind.
  void leavePart() const { disk.write("photos/.fennick-incoming/0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part"); }
  [[nodiscard]] std::vector<std::string> lying() const { return disk.names("photos/.fennick-incoming"); }

  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  const fs::path photos = disk.makeFolder("photos");
  const fs::path incoming = photos / ".fennick-incoming";
};

TEST_F(IncomingFolderTest, LeftoversOfACrashedRunAreClearedAtTheStart) {
  leavePart();
  IncomingFolder(files).adopt(photos);
  EXPECT_THAT(lying(), IsEmpty());
}

TEST_F(IncomingFolderTest, AFolderChosenLaterIsClearedBeforeItsFirstUpload) {
  leavePart();
  IncomingFolder folder(files);
  folder.adopt(disk.makeFolder("another"));
  const auto part = folder.createPart(photos).value();
  EXPECT_THAT(lying(), ElementsAre(part.file.filename().string()));
}

TEST_F(IncomingFolderTest, OnlyWhatIsCertainlyAPartFileIsCleared) {
  const std::string uuid = "0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9";
  for (const std::string &name : {uuid, uuid + ".part.jpg", "x" + uuid + ".part", uuid + ".PART",
                                  std::string("0a1b2c3d-4e5f-4071-8293-a4b5c6d7e8f9.part"),
                                  std::string("0A1B2C3D4E5F-4071-8293-A4B5C6D7E8F9--.part"),
                                  std::string("holiday.part"), std::string(".part")})
    disk.write(".fennick-incoming/" + name);
  fs::create_directories(disk / ".fennick-incoming/1A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part");
  fs::create_symlink(disk.write("mine.jpg"),
                     disk / ".fennick-incoming/2A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part");
  const auto before = disk.names(".fennick-incoming");
  IncomingFolder(files).adopt(disk.path());
  EXPECT_EQ(disk.names(".fennick-incoming"), before);
}

TEST_F(IncomingFolderTest, NothingIsClearedWhileAnotherProgramReceivesThere) {
  IncomingFolder other(files);
  auto part = std::optional(other.createPart(photos).value());
  IncomingFolder(files).adopt(photos);
  EXPECT_EQ(lying().size(), 1U);
  other.adopt(
      disk.makeFolder("photos2/.fennick-incoming").parent_path()); // it moves on, its upload still runs
  IncomingFolder(files).adopt(photos);
  EXPECT_EQ(lying().size(), 1U);
  part.reset(); // its upload ends without tidying up
  IncomingFolder(files).adopt(photos);
  EXPECT_THAT(lying(), IsEmpty());
}

TEST_F(IncomingFolderTest, AFolderThatWasDeletedIsMadeAndHeldAnew) {
  IncomingFolder folder(files);
  const auto first = folder.createPart(photos).value();
  fs::remove_all(photos);
  const auto second = folder.createPart(photos).value();
  EXPECT_NE(first.hold, second.hold);
  IncomingFolder(files).adopt(photos);
  EXPECT_THAT(lying(), ElementsAre(second.file.filename().string()));
}

TEST_F(IncomingFolderTest, AFileInItsPlaceIsAnErrorUntilItIsGone) {
  disk.write("photos/.fennick-incoming");
  IncomingFolder folder(files);
  folder.adopt(photos);
  EXPECT_EQ(folder.createPart(photos).error(), std::errc::not_a_directory);
  fs::remove(incoming);
  EXPECT_TRUE(folder.createPart(photos));
}

} // namespace
} // namespace fennick

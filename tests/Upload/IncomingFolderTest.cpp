#include "FennickCore/Upload/IncomingFolder.h"

#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <optional>
#include <thread>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class IncomingFolderTest : public ::testing::Test {
protected:
  [[nodiscard]] std::vector<std::string> lying() const { return disk.names("photos/.fennick-incoming"); }

  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  const fs::path photos = disk.makeFolder("photos");
};

TEST_F(IncomingFolderTest, ClearsLeftoversAtTheStartOrBeforeTheFirstUpload) {
  const char *leftover = "photos/.fennick-incoming/0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part";
  disk.write(leftover);
  disk.write("photos/.fennick-incoming/0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.out");
  IncomingFolder(files).adopt(photos);
  EXPECT_THAT(lying(), IsEmpty());
  disk.write(leftover);
  IncomingFolder folder(files);
  folder.adopt(disk.makeFolder("another"));
  const auto part = folder.createPart(photos).value();
  EXPECT_THAT(lying(), ElementsAre(part.file.filename().string()));
}

TEST_F(IncomingFolderTest, ClearsOnlyPartFiles) {
  const fs::path incoming = disk.makeFolder("photos/.fennick-incoming");
  for (const char *name :
       {"0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9", "0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part.jpg",
        "0a1b2c3d-4e5f-4071-8293-a4b5c6d7e8f9.part", "x0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part",
        "0A1B2C3D4E5F-4071-8293-A4B5C6D7E8F9--.part", "holiday.part", ".part"})
    disk.write(fmt::format("photos/.fennick-incoming/{}", name));
  fs::create_directory(incoming / "1A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part");
  fs::create_symlink(disk.write("mine.jpg"), incoming / "2A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.part");
  const auto before = lying();
  IncomingFolder(files).adopt(photos);
  EXPECT_EQ(lying(), before);
}

TEST_F(IncomingFolderTest, ClearsNothingWhileAnotherProgramReceives) {
  IncomingFolder other(files);
  auto part = std::optional(other.createPart(photos).value());
  IncomingFolder(files).adopt(photos);
  EXPECT_EQ(lying().size(), 1U);
  other.adopt(disk.makeFolder("another/.fennick-incoming")
                  .parent_path()); // another folder while its upload is running
  IncomingFolder(files).adopt(photos);
  EXPECT_EQ(lying().size(), 1U);
  part.reset(); // the upload ends without cleaning up
  IncomingFolder(files).adopt(photos);
  EXPECT_THAT(lying(), IsEmpty());
}

TEST_F(IncomingFolderTest, HoldsTheFolderOnlyDuringWork) {
  IncomingFolder folder(files);
  IncomingFolder other(files);
  const auto isHeld = [&] {
    return !DirectoryLock::tryLock(photos / ".fennick-incoming", DirectoryLock::Mode::exclusive);
  };
  for (int round = 0; round < 2; ++round) {
    auto part = std::optional(folder.createPart(photos).value());
    const auto more = folder.hold(photos).value();
    EXPECT_EQ(part->hold, more) << "all work of one program goes under one hold";
    EXPECT_TRUE(isHeld());
    const auto theirs = other.createPart(photos).value();
    EXPECT_TRUE(fs::exists(part->file));
    part.reset();
    EXPECT_TRUE(fs::exists(folder.createPart(photos)->file) && fs::exists(theirs.file));
  }
  EXPECT_FALSE(isHeld());
}

TEST_F(IncomingFolderTest, WaitsWhileTheFolderIsBeingCleared) {
  std::jthread phone;
  std::optional<IncomingPart> part;
  IncomingHold kept;
  IncomingFolder other(files);
  IncomingFolder folder(files, [&](const fs::path &incoming, const IncomingHold &hold) {
    EXPECT_EQ(incoming, photos / ".fennick-incoming");
    EXPECT_EQ(lying().size(), 1U) << "records are read before leftovers go";
    kept = hold;
    phone = std::jthread([&] { part = other.createPart(photos).value(); });
  });
  disk.write("photos/.fennick-incoming/0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.out");
  folder.adopt(photos);
  phone.join();
  EXPECT_THAT(lying(), ElementsAre(part->file.filename().string()));
  part.reset();
  other.adopt(photos);
  EXPECT_EQ(lying().size(), 1U) << "what was taken over is held";
  kept.reset();
  other.adopt(photos);
  EXPECT_THAT(lying(), IsEmpty());
}

} // namespace
} // namespace fennick

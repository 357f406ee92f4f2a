#include "FennickCore/Storage/PhotoOrigin.h"
#include "FennickCore/Storage/PhotoRotation.h"

#include "FennickCore/Platform/Files/FileAttributes.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;

constexpr const char *kAttribute = "user.fennick.origin";

class PhotoOriginTest : public testing::Test {
protected:
  PhotoOriginTest() {
    if (!setFileAttribute(photo, "user.test", "1"))
      unsupported = true;
  }
  void SetUp() override {
    if (unsupported)
      GTEST_SKIP() << "the folder's file system has no extended attributes";
  }

  test::TemporaryFolder folder;
  fs::path photo = folder.write("a.jpg");
  const PhotoOrigin origin{.address = "192.168.1.5",
                           .name = "IMG_7.HEIC",
                           .receivedAt = Instant(std::chrono::seconds(1'714'527'000)),
                           .note = "3.2 MB → 1600px · q85",
                           .original = "20240501_093000.heic"};
  bool unsupported = false;
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
    ASSERT_TRUE(setFileAttribute(photo, kAttribute, text));
    EXPECT_EQ(readOrigin(photo), std::nullopt) << text;
  }
  const std::string hostile = R"({"received":1,"name":"a\nb\u001b[2J)" + std::string(2'000, 'x') + "\"}";
  ASSERT_TRUE(setFileAttribute(photo, kAttribute, hostile));
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

#include "tests/Upload/UploadStage.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace fennick {
namespace {

using test::kJPEG;
using test::kTIFF;
using test::Operation;
using ::testing::IsEmpty;

class UploadSinkTest : public test::UploadStage {
protected:
  void expectNothingLeft() {
    EXPECT_THAT(photos(), IsEmpty());
    EXPECT_THAT(parts(), IsEmpty());
    EXPECT_TRUE(reported().empty());
    EXPECT_EQ(activity.snapshot().uploads, 0);
  }
};

TEST_F(UploadSinkTest, ReportsASavedPhotoOnce) {
  const Instant admitted = clock.now();
  auto sink = admit(kJPEG.size(), "Content-Type: IMAGE/JPEG; q=1\r\nX-Filename: a.png\r\n");
  clock.advance(Seconds(86'400));
  remote = "192.168.1.99";
  destination.folder = disk / "another";
  EXPECT_EQ(finish(std::move(sink), kJPEG), "200 IMG_001.jpg");
  ASSERT_EQ(reported().size(), 1U);
  auto record = reported().front();
  EXPECT_FALSE(std::exchange(record.pending, {}).empty());
  EXPECT_EQ(record, (UploadRecord{.url = disk / "photos/IMG_001.jpg",
                                  .saveFolder = disk / "photos",
                                  .bytes = std::ssize(kJPEG),
                                  .remoteAddress = "192.168.1.20",
                                  .mediaType = "image/jpeg",
                                  .filename = "a.png",
                                  .receivedAt = admitted}));
  EXPECT_EQ(disk.read("photos/IMG_001.jpg"), kJPEG);
  EXPECT_THAT(parts(), IsEmpty());
}

TEST_F(UploadSinkTest, DetectsTheTypeInAnyChunks) {
  for (std::size_t cut = 0; cut <= 18; ++cut) {
    auto sink = admit(kTIFF.size(), "X-Filename: raw.dng\r\n");
    ASSERT_TRUE(sink->write(std::as_bytes(std::span(kTIFF).first(cut))));
    EXPECT_EQ(finish(std::move(sink), std::string_view(kTIFF).substr(cut)),
              fmt::format("200 IMG_{:03}.dng", cut + 1));
    EXPECT_EQ(disk.read(fmt::format("photos/IMG_{:03}.dng", cut + 1)), kTIFF);
  }
}

TEST_F(UploadSinkTest, LeavesNothingOfARefusedBody) {
  const std::string incomplete = "400 传输不完整 / incomplete body";
  const std::string unsupported =
      "415 不支持的文件类型，只接收照片和视频 / Unsupported file type; photos and videos only";
  EXPECT_EQ(finish(admit(kJPEG.size() + 1), kJPEG), incomplete);
  EXPECT_EQ(finish(admit(kJPEG.size() - 1), kJPEG), incomplete);
  EXPECT_EQ(upload("plain text", "Content-Type: image/jpeg\r\nX-Filename: a.jpg\r\n"), unsupported);
  EXPECT_EQ(upload("\xFF\xD8\xFF"), unsupported);
  expectNothingLeft();
}

TEST_F(UploadSinkTest, ReportsDiskErrorsToThePhoneAndLeavesNothing) {
  for (const auto operation :
       {Operation::write, Operation::sync, Operation::close, Operation::createDirectories, Operation::list,
        Operation::moveNoReplace, Operation::syncDirectory}) {
    SCOPED_TRACE(static_cast<int>(operation));
    auto sink = admit(kJPEG.size());
    files.failNext(operation, ENOSPC);
    EXPECT_EQ(finish(std::move(sink), kJPEG),
              operation == Operation::write ? "aborted" : "500 保存失败 / save failed");
    expectNothingLeft();
  }
  EXPECT_TRUE(upload(kJPEG).starts_with("200 IMG_"));
}

} // namespace
} // namespace fennick

#include "Quarrow/Terminal/Receiver.h"

#include "FennickCore/Platform/ListeningSocket.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/LoopbackClient.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <condition_variable>

namespace quarrow {
namespace {

using fennick::Locked;
using fennick::Seconds;
using fennick::test::LoopbackClient;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

// The main thread's queue in the hands of the test: nothing runs until `runAll`.
class HandQueue final : public fennick::MainQueue {
public:
  void post(std::function<void()> task) override {
    const Locked locked(lock_);
    tasks_.push_back(std::move(task));
    posted_.notify_all();
  }
  void postAfter(Seconds delay, std::function<void()> task) override {
    const Locked locked(lock_);
    delayed_.emplace_back(delay, std::move(task));
  }

  void waitForTask() {
    Locked locked(lock_);
    while (tasks_.empty())
      locked.wait(posted_);
  }
  void runAll() {
    std::vector<std::function<void()>> ready;
    {
      const Locked locked(lock_);
      ready.swap(tasks_);
    }
    for (const auto &task : ready)
      task();
  }
  // What was to run later runs now.
  std::size_t runDelayed() {
    std::vector<std::pair<Seconds, std::function<void()>>> ready;
    {
      const Locked locked(lock_);
      ready.swap(delayed_);
    }
    for (const auto &[delay, task] : ready)
      task();
    return ready.size();
  }

private:
  fennick::Mutex lock_;
  std::condition_variable posted_;
  std::vector<std::function<void()>> tasks_ GUARDED_BY(lock_);
  std::vector<std::pair<Seconds, std::function<void()>>> delayed_ GUARDED_BY(lock_);
};

class RecordingReport final : public Report {
public:
  void listening(const Listening &state) override { started = state; }
  void received(const Received &file) override { notes.push_back(file.note); }
  void error(const std::string &message) override { errors.push_back(message); }
  [[nodiscard]] bool showsProgress() const override { return true; }
  void progress(const fennick::UploadActivity::Snapshot &activity, double) override {
    uploads.push_back(activity.uploads);
  }

  std::optional<Listening> started;
  std::vector<std::string> notes;
  std::vector<std::string> errors;
  std::vector<std::int64_t> uploads;
};

// Takes whatever it is given.
class RemovingTrash final : public fennick::Trash {
public:
  fennick::IOResult<void> moveToTrash(const std::filesystem::path &file) override {
    std::filesystem::remove(file);
    return {};
  }
};

class ReceiverTest : public ::testing::Test {
protected:
  ReceiverTest() { settings.preferredPort = 0; }

  std::unique_ptr<Receiver> make() {
    return std::make_unique<Receiver>(
        Receiver::Setup{.settings = settings,
                        .accessKey = "secret",
                        .folder = disk / "photos",
                        .cacheDirectory = disk / "cache"},
        report,
        Receiver::Services{
            .mainQueue = queue, .files = files, .clock = clock, .decoder = decoder, .trash = trash});
  }
  std::string upload(std::string_view body) {
    LoopbackClient phone("127.0.0.1", report.started->port);
    return phone.ask(
        fmt::format("POST /upload?k=secret HTTP/1.1\r\nContent-Length: {}\r\n\r\n{}", body.size(), body));
  }

  void runUntilNotes(std::size_t count) {
    while (report.notes.size() < count) {
      queue.waitForTask();
      queue.runAll();
    }
  }

  fennick::test::TemporaryFolder disk;
  fennick::test::FaultyFileSystem files;
  fennick::SystemClock clock;
  HandQueue queue;
  RecordingReport report;
  fennick::test::FakeDecoder decoder;
  RemovingTrash trash;
  fennick::AppSettings settings;
};

constexpr std::string_view kJPEG = "\xFF\xD8\xFF\xE0 a photo";

TEST_F(ReceiverTest, AnUploadIsReportedOnTheMainQueueUnderItsFinalName) {
  settings.naming = fennick::PrefixSequenceNaming{};
  settings.sessionSubfolder = "party";
  const auto receiver = make();
  ASSERT_TRUE(receiver->start());
  EXPECT_THAT(upload(kJPEG), HasSubstr("IMG_001.jpg"));
  EXPECT_THAT(report.notes, IsEmpty());
  runUntilNotes(1);
  EXPECT_THAT(report.notes, ElementsAre("IMG_001.jpg：12 字节"));
  EXPECT_THAT(disk.names("photos/party"), ElementsAre("IMG_001.jpg"));
}

TEST_F(ReceiverTest, AnUploadIsProcessedThenTheFolderIsPrunedAndTheNoteSaysBoth) {
  settings.naming = fennick::PrefixSequenceNaming{};
  settings.imaging.stripAllMetadata = true;
  settings.folderLimit = 2;
  decoder.setFacts(fennick::PictureFacts{.type = fennick::PictureType::jpeg,
                                         .width = 4000,
                                         .height = 3000,
                                         .orientation = 6,
                                         .hasMetadata = true});
  const auto receiver = make();
  ASSERT_TRUE(receiver->start());
  const auto receive = [&] {
    upload(kJPEG);
    runUntilNotes(report.notes.size() + 1);
  };
  receive();
  decoder.setRendering(fennick::Rendering{.bytes = "smaller", .longEdge = 4000, .quality = 0.85});
  receive();
  receive();
  EXPECT_THAT(report.notes,
              ElementsAre("IMG_001.jpg：未处理 / skipped: 无法编码为 public.jpeg",
                          "IMG_002.jpeg：12 字节 → 4000px · q85 · 7 字节 · JPEG · 已转正 / rotated",
                          "IMG_003.jpeg：12 字节 → 4000px · q85 · 7 字节 · JPEG · 已转正 / rotated"));
  EXPECT_THAT(disk.names("photos"), ElementsAre(".fennick-incoming", "IMG_002.jpeg", "IMG_003.jpeg"));
}

TEST_F(ReceiverTest, PhotosThatWaitAtTheEndStayAsTheyCameAndTheNoteSaysSo) {
  const auto receiver = make();
  ASSERT_TRUE(receiver->start());
  decoder.hold();
  upload(kJPEG);
  upload(kJPEG);
  decoder.awaitHeld(1);
  decoder.setFacts(fennick::test::FakeDecoder::kFault(fennick::PictureFault::stopped));
  decoder.release();
  receiver->stop();
  queue.runAll();
  EXPECT_THAT(report.notes, ElementsAre(HasSubstr("未处理 / skipped: 接收已结束"), HasSubstr("接收已结束")));
  EXPECT_THAT(disk.names("photos"), SizeIs(3));
}

TEST_F(ReceiverTest, AFolderThatCannotBeMadeIsSaidAndComesBackWithoutARestart) {
  files.failAlways(fennick::test::FaultyFileSystem::Operation::createDirectories, EROFS);
  const auto receiver = make();
  ASSERT_TRUE(receiver->start());
  EXPECT_THAT(report.errors, ElementsAre(StartsWith("无法创建保存目录：")));
  EXPECT_THAT(upload(kJPEG), StartsWith("HTTP/1.1 500"));
  files.mend(fennick::test::FaultyFileSystem::Operation::createDirectories);
  EXPECT_THAT(upload(kJPEG), StartsWith("HTTP/1.1 200"));
}

TEST_F(ReceiverTest, AServerThatCannotStartSaysWhy) {
  settings.preferredPort = 65535; // the last one: no other to go on to
  const auto blocker = fennick::ListeningSocket::open(65535);
  const auto receiver = make();
  EXPECT_FALSE(receiver->start());
  EXPECT_THAT(report.errors, ElementsAre("无法启动服务：端口 65535 已被占用"));
}

TEST_F(ReceiverTest, ProgressIsAskedForOnlyWhileSomethingArrives) {
  const auto receiver = make();
  ASSERT_TRUE(receiver->start());
  LoopbackClient phone("127.0.0.1", report.started->port);
  phone.send("POST /upload?k=secret HTTP/1.1\r\nContent-Length: 12\r\n\r\n\xFF\xD8\xFF\xE0");
  queue.waitForTask();
  queue.runAll();
  EXPECT_EQ(report.uploads.back(), 1);
  phone.send(" a photo");
  EXPECT_THAT(phone.readToEnd(), StartsWith("HTTP/1.1 200"));
  EXPECT_THAT(upload(kJPEG), StartsWith("HTTP/1.1 200")); // another one before the next report is due
  queue.runAll();
  EXPECT_EQ(queue.runDelayed(), 1U);
  EXPECT_EQ(report.uploads.back(), 0);
  EXPECT_EQ(queue.runDelayed(), 0U);
}

TEST_F(ReceiverTest, StoppingLeavesNoPartFile) {
  auto receiver = make();
  ASSERT_TRUE(receiver->start());
  LoopbackClient phone("127.0.0.1", report.started->port);
  phone.send("POST /upload?k=secret HTTP/1.1\r\nContent-Length: 1000\r\n\r\n\xFF\xD8\xFF\xE0");
  queue.waitForTask(); // the upload has begun
  receiver->stop();
  EXPECT_THAT(disk.names("photos/.fennick-incoming"), IsEmpty());
  EXPECT_THAT(phone.readToEnd(), IsEmpty());
}

} // namespace
} // namespace quarrow

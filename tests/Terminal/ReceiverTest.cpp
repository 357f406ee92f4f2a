#include "Quarrow/Terminal/Receiver.h"

#include "FennickCore/Platform/ListeningSocket.h"
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

class ReceiverTest : public ::testing::Test {
protected:
  ReceiverTest() { settings.preferredPort = 0; }

  std::unique_ptr<Receiver> make() {
    return std::make_unique<Receiver>(
        Receiver::Setup{.settings = settings, .accessKey = "secret", .folder = disk / "photos"}, report,
        queue, files, clock);
  }
  std::string upload(std::string_view body) {
    LoopbackClient phone("127.0.0.1", report.started->port);
    return phone.ask(
        fmt::format("POST /upload?k=secret HTTP/1.1\r\nContent-Length: {}\r\n\r\n{}", body.size(), body));
  }

  fennick::test::TemporaryFolder disk;
  fennick::test::FaultyFileSystem files;
  fennick::SystemClock clock;
  HandQueue queue;
  RecordingReport report;
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
  queue.runAll();
  EXPECT_THAT(report.notes, ElementsAre("IMG_001.jpg：12 字节"));
  EXPECT_THAT(disk.names("photos/party"), ElementsAre("IMG_001.jpg"));
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

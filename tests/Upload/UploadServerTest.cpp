#include "FennickCore/HTTP/HTTPServer.h"
#include "tests/Support/LoopbackClient.h"
#include "tests/Upload/UploadStage.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <latch>
#include <thread>

namespace fennick {
namespace {

using test::kJPEG;
using test::Operation;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Phone = test::LoopbackClient;

std::string offer(std::size_t length) {
  return fmt::format("POST /upload?k=secret HTTP/1.1\r\nContent-Length: {}\r\n\r\n", length);
}

// Waits until an operation is reached for the first time.
class Reached {
public:
  Reached(test::FaultyFileSystem &files, Operation operation) {
    files.before(operation, [this] {
      if (!set_.test_and_set())
        promise_.set_value();
    });
  }
  void wait() { promise_.get_future().wait(); }

private:
  std::atomic_flag set_;
  std::promise<void> promise_;
};

class UploadServerTest : public test::UploadStage {
protected:
  Phone phone() { return {"127.0.0.1", server.port().value()}; }

  RateLimiter limiter{kServiceBans};
  SystemClock time;
  HTTPServer server{router, kServiceLimits, limiter, time};
};

TEST_F(UploadServerTest, SavesSimultaneousPhotos) {
  constexpr int kPhones = 8;
  ASSERT_TRUE(server.start(0, 1));
  std::latch begin(kPhones);
  {
    std::vector<std::jthread> phones;
    for (int number = 0; number < kPhones; ++number)
      phones.emplace_back([&, number] {
        const std::string photo = kJPEG + std::string(300'000, static_cast<char>('a' + number));
        Phone sender = phone();
        begin.arrive_and_wait();
        const std::string answer = sender.ask(offer(photo.size()) + photo);
        EXPECT_THAT(answer, HasSubstr("HTTP/1.1 200 OK\r\n"));
        EXPECT_EQ(disk.read("photos/" + answer.substr(answer.find("\r\n\r\n") + 4)), photo);
      });
  }
  EXPECT_EQ(photos().size(), kPhones);
  EXPECT_EQ(reported().size(), kPhones);
}

TEST_F(UploadServerTest, LeavesNothingIfThePhoneDisconnects) {
  Reached written(files, Operation::write);
  Reached removed(files, Operation::remove);
  ASSERT_TRUE(server.start(0, 1));
  auto sender = std::make_optional<Phone>(phone());
  sender->send(offer(1000) + kJPEG);
  written.wait();
  EXPECT_EQ(parts().size(), 1U);
  sender.reset();
  removed.wait();
  server.stop();
  EXPECT_THAT(parts(), IsEmpty());
  EXPECT_THAT(photos(), IsEmpty());
  EXPECT_TRUE(reported().empty());
}

TEST_F(UploadServerTest, LosesOnlyTheUploadIfTheFolderIsRemoved) {
  Reached written(files, Operation::write);
  ASSERT_TRUE(server.start(0, 1));
  Phone unlucky = phone();
  unlucky.send(offer(kJPEG.size()) + kJPEG.substr(0, 10));
  written.wait();
  std::filesystem::remove_all(disk / "photos");
  EXPECT_THAT(unlucky.ask(kJPEG.substr(10)), HasSubstr("保存失败 / save failed"));
  EXPECT_THAT(phone().ask(offer(kJPEG.size()) + kJPEG), HasSubstr("\r\n\r\nIMG_001.jpg"));
  EXPECT_EQ(disk.read("photos/IMG_001.jpg"), kJPEG);
  EXPECT_THAT(parts(), IsEmpty());
}

} // namespace
} // namespace fennick

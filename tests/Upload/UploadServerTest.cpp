#include "FennickCore/HTTP/HTTPServer.h"
#include "tests/Support/LoopbackClient.h"
#include "tests/Upload/UploadStage.h"

#include <gmock/gmock.h>

#include <latch>
#include <thread>

namespace fennick {
namespace {

using test::kJPEG;
using ::testing::HasSubstr;

using Phone = test::LoopbackClient;

std::string offer(std::size_t length) {
  return fmt::format("POST /upload?k=secret HTTP/1.1\r\nContent-Length: {}\r\n\r\n", length);
}

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

} // namespace
} // namespace fennick

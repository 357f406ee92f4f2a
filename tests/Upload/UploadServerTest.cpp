#include "FennickCore/HTTP/HTTPServer.h"
#include "tests/Upload/UploadStage.h"

#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <future>
#include <latch>
#include <set>
#include <thread>

namespace fennick {
namespace {

using test::kJPEG;
using test::Operation;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A phone on the same computer.
class Phone {
public:
  explicit Phone(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_port = htons(port);
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket_.get(), reinterpret_cast<const sockaddr *>(&server), sizeof server), 0);
  }

  Phone &offers(std::size_t length) {
    return sends(fmt::format("POST /upload?k=secret HTTP/1.1\r\nContent-Length: {}\r\n\r\n", length));
  }
  Phone &sends(std::string_view bytes) {
    EXPECT_EQ(::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), std::ssize(bytes));
    return *this;
  }
  std::string answer() {
    std::string all;
    std::array<char, 4096> buffer;
    for (ssize_t count = 1; count > 0;
         all.append(buffer.data(), static_cast<std::size_t>(std::max(count, ssize_t{0}))))
      count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    return all;
  }
  void disconnects() { socket_.reset(); }

private:
  FileDescriptor socket_;
};

// Lets a test wait until an operation is reached for the first time.
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
  std::uint16_t port() { return server.port().value(); }

  RateLimiter limiter{kServiceBans};
  SystemClock time;
  HTTPServer server{router, kServiceLimits, limiter, time};
};

TEST_F(UploadServerTest, PhotosSentAtOnceAreAllSavedWhole) {
  constexpr int kPhones = 8;
  ASSERT_TRUE(server.start(0, 1));
  std::latch begin(kPhones);
  std::array<std::string, kPhones> answers;
  const auto photo = [](int number) { return kJPEG + std::string(300'000, static_cast<char>('a' + number)); };
  {
    std::vector<std::jthread> phones;
    for (int number = 0; number < kPhones; ++number)
      phones.emplace_back([&, number] {
        const std::string body = photo(number);
        Phone sender(port());
        begin.arrive_and_wait();
        answers[static_cast<std::size_t>(number)] = sender.offers(body.size()).sends(body).answer();
      });
  }
  std::set<std::string> names;
  for (int number = 0; number < kPhones; ++number) {
    const std::string &answer = answers[static_cast<std::size_t>(number)];
    ASSERT_THAT(answer, HasSubstr("HTTP/1.1 200 OK\r\n"));
    const std::string name = answer.substr(answer.find("\r\n\r\n") + 4);
    EXPECT_EQ(disk.read("photos/" + name), photo(number));
    names.insert(name);
  }
  EXPECT_EQ(names.size(), kPhones);
  EXPECT_EQ(reported().size(), kPhones);
}

TEST_F(UploadServerTest, APhoneThatGoesAwayInTheMiddleLeavesNothingBehind) {
  Reached written(files, Operation::write);
  Reached removed(files, Operation::remove);
  ASSERT_TRUE(server.start(0, 1));
  Phone phone(port());
  phone.offers(1000).sends(kJPEG);
  written.wait();
  EXPECT_EQ(parts().size(), 1U);
  phone.disconnects();
  removed.wait();
  server.stop();
  EXPECT_THAT(parts(), IsEmpty());
  EXPECT_THAT(photos(), IsEmpty());
  EXPECT_TRUE(reported().empty());
}

TEST_F(UploadServerTest, ASaveFolderThatIsRemovedDuringAnUploadCostsThatUploadOnly) {
  Reached written(files, Operation::write);
  ASSERT_TRUE(server.start(0, 1));
  Phone unlucky(port());
  unlucky.offers(kJPEG.size()).sends(kJPEG.substr(0, 10));
  written.wait();
  std::filesystem::remove_all(disk / "photos");
  EXPECT_THAT(unlucky.sends(kJPEG.substr(10)).answer(), HasSubstr("保存失败 / save failed"));
  EXPECT_THAT(Phone(port()).offers(kJPEG.size()).sends(kJPEG).answer(), HasSubstr("\r\n\r\nIMG_001.jpg"));
  EXPECT_EQ(disk.read("photos/IMG_001.jpg"), kJPEG);
  EXPECT_THAT(parts(), IsEmpty());
}

} // namespace
} // namespace fennick

#include "FennickCore/HTTP/HTTPServer.h"

#include "tests/HTTP/RecordingHandler.h"
#include "tests/Support/LoopbackClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>

namespace fennick {
namespace {

using test::LoopbackClient;
using ::testing::EndsWith;

constexpr std::string_view kGet = "GET /x HTTP/1.1\r\n\r\n";

class HTTPServerTest : public ::testing::Test {
protected:
  std::uint16_t start() { return server.start(0, 1).value(); }
  static std::string ask(std::uint16_t port, std::string_view request) {
    return LoopbackClient("127.0.0.1", port).ask(request);
  }
  SystemClock clock;
  RateLimiter limiter{kServiceBans};
  HTTPLimits limits = [](HTTPLimits few) { return few.maxConnections = 3, few; }(kServiceLimits);
  test::RecordingHandler handler;
  HTTPServer server{handler, limits, limiter, clock};
};

TEST_F(HTTPServerTest, ServesIPv4AndIPv6WithOneTextPerAddress) {
  const auto port = start();
  for (const std::string address : {"127.0.0.1", "::ffff:127.0.0.1", "::1"}) {
    LoopbackClient client(address, port);
    if (!client.isConnected() && address != "127.0.0.1")
      continue; // this computer has no IPv6
    EXPECT_THAT(client.ask(kGet), EndsWith("\r\n\r\nanswer")) << address;
    EXPECT_EQ(handler.requests().back().second, address == "::1" ? "::1" : "127.0.0.1");
  }
}

TEST_F(HTTPServerTest, SkipsTakenPortsUpToTheLast) {
  const auto holder = ListeningSocket::open(0).value();
  const std::uint16_t port = holder.port();
  const auto taken = [](std::vector<std::uint16_t> tried) {
    return std::expected<std::uint16_t, HTTPServerError>(std::unexpected(NoFreePort{std::move(tried)}));
  };
  EXPECT_EQ(server.start(port, 1), taken({port}));
  const auto last = ListeningSocket::open(65535); // taken by this test or another program
  EXPECT_EQ(server.start(65535, 5), taken({65535}));
  const auto bound = server.start(port, 20).value();
  EXPECT_GT(bound, port);
  EXPECT_THAT(ask(bound, kGet), EndsWith("answer"));
}

TEST_F(HTTPServerTest, RefusesConnectionsWhenFullAndAdmitsAgain) {
  const auto port = start();
  auto first = std::make_unique<LoopbackClient>("127.0.0.1", port);
  const LoopbackClient second("127.0.0.1", port);
  const LoopbackClient third("127.0.0.1", port);
  EXPECT_EQ(ask(port, kGet), ""); // connections are accepted in order, so the three are admitted by now
  first.reset();
  std::string answer;
  while (answer.empty()) // until the server has noticed
    answer = ask(port, kGet);
  EXPECT_THAT(answer, EndsWith("\r\n\r\nanswer"));
}

TEST_F(HTTPServerTest, AbortsUploadsWhenStopped) {
  std::latch receiving(3);
  handler.onWrite = [&] { return receiving.count_down(), IOResult<void>(); };
  const auto port = start();
  std::vector<LoopbackClient> phones;
  for (int i = 0; i < 3; ++i)
    ASSERT_TRUE(
        phones.emplace_back("127.0.0.1", port).send("POST /x HTTP/1.1\r\nContent-Length: 9\r\n\r\n0"));
  receiving.wait();
  server.stop();
  EXPECT_EQ(handler.aborts, 3);
  EXPECT_EQ(handler.finishes, 0);
  for (auto &phone : phones)
    EXPECT_EQ(phone.readToEnd(), "");
  EXPECT_FALSE(LoopbackClient("127.0.0.1", port).isConnected());
  EXPECT_THAT(ask(start(), kGet), EndsWith("answer"));
}

TEST_F(HTTPServerTest, SurvivesARequestThatThrows) {
  handler.onWrite = []() -> IOResult<void> { throw std::runtime_error("out of memory"); };
  const auto port = start();
  EXPECT_EQ(ask(port, "POST /x HTTP/1.1\r\nContent-Length: 1\r\n\r\nx"), "");
  EXPECT_THAT(ask(port, kGet), EndsWith("\r\n\r\nanswer"));
  EXPECT_EQ(handler.aborts, 1);
}

} // namespace
} // namespace fennick

#include "FennickCore/HTTP/HTTPServer.h"

#include "FennickCore/Platform/Log.h"
#include "tests/HTTP/RecordingHandler.h"
#include "tests/Support/LoopbackClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <stdexcept>
#include <thread>

namespace fennick {
namespace {

using test::LoopbackClient;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr std::string_view kGet = "GET /x HTTP/1.1\r\n\r\n";

class HTTPServerTest : public ::testing::Test {
protected:
  std::uint16_t start() { return server().start(0, 1).value(); }
  HTTPServer &server() {
    if (!server_)
      server_ = std::make_unique<HTTPServer>(handler, limits, limiter, clock);
    return *server_;
  }
  static std::string ask(std::uint16_t port, std::string_view request) {
    return LoopbackClient("127.0.0.1", port).ask(request);
  }

  SystemClock clock;
  HTTPLimits limits = kServiceLimits;
  RateLimiter limiter{kServiceBans};
  test::RecordingHandler handler;

private:
  std::unique_ptr<HTTPServer> server_;
};

TEST_F(HTTPServerTest, PeersOfBothFamiliesAreServedAndOneAddressHasOneText) {
  const auto port = start();
  EXPECT_EQ(server().port(), port);
  std::vector<std::string> expected;
  for (const auto &[address, remote] :
       {std::pair("127.0.0.1", "127.0.0.1"), std::pair("::ffff:127.0.0.1", "127.0.0.1"),
        std::pair("::1", "::1")}) {
    LoopbackClient client(address, port);
    if (!client.isConnected() && std::string_view(address) != "127.0.0.1")
      continue; // this computer has no IPv6
    EXPECT_THAT(client.ask(kGet), EndsWith("\r\n\r\nanswer")) << address;
    expected.emplace_back(remote);
  }
  std::vector<std::string> seen;
  for (const auto &request : handler.requests())
    seen.push_back(request.remote);
  EXPECT_EQ(seen, expected);
}

TEST_F(HTTPServerTest, TakenPortsAreSkippedInOrderAndNoneIsTriedPastTheLast) {
  // Two neighbours that were free: other programs may hold any.
  std::optional<ListeningSocket> first;
  std::optional<ListeningSocket> second;
  while (!second) {
    first = ListeningSocket::open(0).value();
    if (auto next = first->port() < 65535
                        ? ListeningSocket::open(static_cast<std::uint16_t>(first->port() + 1))
                        : std::unexpected(std::error_code()))
      second = std::move(*next);
  }
  const std::uint16_t port = first->port();
  const auto taken = [](std::vector<std::uint16_t> tried) {
    return std::expected<std::uint16_t, HTTPServerError>(std::unexpected(NoFreePort{std::move(tried)}));
  };
  EXPECT_EQ(server().start(port, 2), taken({port, second->port()}));
  EXPECT_EQ(server().port(), std::nullopt);
  EXPECT_EQ(server().start(port, 0), taken({}));

  const auto last = ListeningSocket::open(65535); // ours now or another's
  EXPECT_EQ(server().start(65535, 5), taken({65535}));

  const auto bound = server().start(port, 20).value();
  EXPECT_GT(bound, second->port());
  EXPECT_THAT(ask(bound, kGet), EndsWith("answer"));
}

TEST_F(HTTPServerTest, AFullServerRefusesWithoutAWordAndAdmitsAgainAfterOneCloses) {
  limits.maxConnections = 2;
  const auto port = start();
  auto first = std::make_unique<LoopbackClient>("127.0.0.1", port);
  const LoopbackClient second("127.0.0.1", port);
  EXPECT_EQ(ask(port, kGet), ""); // accepted in order: the two are in by now
  first.reset();
  std::string answer;
  while (answer.empty()) // until the server has noticed
    answer = ask(port, kGet);
  EXPECT_THAT(answer, EndsWith("\r\n\r\nanswer"));
}

TEST_F(HTTPServerTest, StopEndsLiveUploadsAndReturnsWhenTheyAreAborted) {
  constexpr int kUploads = 3;
  std::latch receiving(kUploads);
  handler.record.onWrite = [&] { receiving.count_down(); };
  const auto port = start();
  std::vector<LoopbackClient> phones;
  for (int i = 0; i < kUploads; ++i) {
    phones.emplace_back("127.0.0.1", port);
    ASSERT_TRUE(phones.back().send("POST /x HTTP/1.1\r\nContent-Length: 100\r\n\r\n01"));
  }
  receiving.wait();
  server().stop();
  EXPECT_EQ(handler.record.aborts, kUploads);
  EXPECT_EQ(handler.record.finishes, 0);
  EXPECT_EQ(server().port(), std::nullopt);
  for (auto &phone : phones)
    EXPECT_EQ(phone.readToEnd(), "");
  EXPECT_FALSE(LoopbackClient("127.0.0.1", port).isConnected());
  server().stop(); // once more changes nothing
  EXPECT_THAT(ask(start(), kGet), EndsWith("answer"));
}

TEST_F(HTTPServerTest, ARequestThatFailsInsideCostsNothingButItself) {
  std::vector<std::string> lines;
  logTo([&](std::string_view line) { lines.emplace_back(line); });
  handler.decide = [](const HTTPRequestHead &head) -> HTTPRouteDecision {
    if (head.path == "/bad")
      throw std::runtime_error("out of memory");
    return HTTPRespond{HTTPResponse::text(200, "fine")};
  };
  const auto port = start();
  EXPECT_EQ(ask(port, "GET /bad HTTP/1.1\r\n\r\n"), "");
  EXPECT_THAT(ask(port, kGet), EndsWith("\r\n\r\nfine"));
  server().stop();
  logTo({});
  EXPECT_THAT(lines, ElementsAre(HasSubstr("out of memory")));
}

TEST_F(HTTPServerTest, ManyUploadsAtOnceAllArrive) {
  constexpr int kPhones = 8;
  constexpr int kUploads = 10;
  const std::string body(100'000, 'x');
  const std::string request =
      "POST /x HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  const auto port = start();
  std::atomic<int> answered = 0;
  {
    std::vector<std::jthread> phones;
    for (int i = 0; i < kPhones; ++i)
      phones.emplace_back([&] {
        for (int j = 0; j < kUploads; ++j)
          answered += ask(port, request).ends_with("received") ? 1 : 0;
      });
  }
  EXPECT_EQ(answered, kPhones * kUploads);
  EXPECT_EQ(handler.record.body().size(), body.size() * kPhones * kUploads);
}

} // namespace
} // namespace fennick

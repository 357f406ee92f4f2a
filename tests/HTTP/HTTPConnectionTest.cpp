#include "FennickCore/HTTP/HTTPConnection.h"

#include "tests/HTTP/RecordingHandler.h"
#include "tests/Support/ScriptedStream.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using namespace std::literals;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr std::string_view kGet = "GET /x HTTP/1.1\r\n\r\n";
constexpr std::string_view kReceived = "HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\n"
                                       "Content-Length: 8\r\nCache-Control: no-store\r\n"
                                       "Connection: close\r\n\r\nreceived";

std::string post(std::size_t length, std::string_view headers = "") {
  return "POST /x HTTP/1.1\r\nContent-Length: " + std::to_string(length) + "\r\n" + std::string(headers) +
         "\r\n";
}

// One connection with a scripted peer, a fake clock and a handler. `serve` runs the script and returns what
// the peer received.
struct Exchange {
  test::FakeClock clock;
  HTTPLimits limits = kServiceLimits;
  RateLimiter limiter{kServiceBans};
  test::RecordingHandler handler;
  std::unique_ptr<test::ScriptedStream> stream = std::make_unique<test::ScriptedStream>(clock);
  test::ScriptedStream &peer = *stream;
  std::unique_ptr<HTTPConnection> connection;
  int closes = 0;
  const Uptime begin = clock.uptime();

  std::string serve() {
    connection =
        std::make_unique<HTTPConnection>(std::move(stream), "192.168.1.20", handler, limits, limiter, clock);
    connection->onClose = [this] { ++closes; };
    connection->start();
    EXPECT_EQ(closes, 1);
    return peer.sent();
  }
  [[nodiscard]] Seconds elapsed() const { return clock.uptime() - begin; }
};

class HTTPConnectionTest : public ::testing::Test, protected Exchange {};

TEST(HTTPConnectionBans, CountsRejectedAndMalformedRequestsTowardsABan) {
  const auto isBannedAfter = [&](bool rejects, std::string_view request) {
    Exchange exchange;
    if (rejects)
      exchange.handler.decide = [](const HTTPRequestHead &) { return HTTPReject{HTTPResponse::notFound()}; };
    for (int i = 0; i < 9; ++i)
      exchange.limiter.recordFailure("192.168.1.20", exchange.clock.uptime());
    exchange.peer.sends(request);
    exchange.serve();
    return exchange.limiter.isBanned("192.168.1.20", exchange.clock.uptime());
  };
  EXPECT_TRUE(isBannedAfter(true, kGet));
  EXPECT_TRUE(isBannedAfter(true, post(3) + "abc"));
  EXPECT_TRUE(isBannedAfter(false, "nonsense\r\n\r\n"));
  EXPECT_FALSE(isBannedAfter(false, kGet));
  EXPECT_FALSE(isBannedAfter(false, "nonsense"));
}

TEST_F(HTTPConnectionTest, NeverPassesABannedPeerToTheHandler) {
  for (int i = 0; i < 10; ++i)
    limiter.recordFailure("192.168.1.20", clock.uptime());
  peer.sends(kGet);
  EXPECT_THAT(serve(), EndsWith("\r\n\r\ntoo many requests"));
  EXPECT_TRUE(handler.requests().empty());
}

TEST(HTTPConnectionCuts, ParsesRequestsSplitAtEveryByte) {
  const std::string requests[]{
      post(10, "Expect: 100-continue\r\n") + "0123456789surplus",
      post(0),
      "HEAD /x?a=%41+b&c HTTP/1.0\r\nX-Name: \xE9\r\nX: 1\r\nX: 2\r\n\r\n",
      "GET /x HTTP/1.1\nHost: a\nX-Key: abc\r\n\r\n",
      "GET /x HTTP/1.1\r\nno colon\r\n\r\n",
      "\r\n\r\n",
  };
  for (const auto &request : requests) {
    Exchange whole;
    whole.peer.sends(request);
    const std::string answer = whole.serve();
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 ")) << request;
    EXPECT_EQ(answer.ends_with("\r\n\r\n"), request.starts_with("HEAD"));
    for (std::size_t cut = 1; cut < request.size(); ++cut) {
      Exchange exchange;
      exchange.peer.sends(request.substr(0, cut)).sends(request.substr(cut));
      EXPECT_EQ(exchange.serve(), answer) << cut << " in " << request;
      EXPECT_EQ(exchange.handler.requests(), whole.handler.requests()) << cut << " in " << request;
      EXPECT_EQ(exchange.handler.body(), whole.handler.body()) << cut << " in " << request;
      EXPECT_EQ(exchange.handler.finishes, whole.handler.finishes) << cut << " in " << request;
    }
  }
}

TEST(HTTPConnectionHead, AcceptsAHeadOfExactlyTheLimit) {
  for (const std::size_t length : {16384U, 16385U}) {
    Exchange exchange;
    std::string head = "GET /x HTTP/1.1\r\nX: ";
    head.append(length - head.size(), 'x');
    exchange.peer.sends(head).sends("\r\n").sends("\r\n");
    const bool fits = length == 16384;
    EXPECT_THAT(exchange.serve(), EndsWith(fits ? "\r\n\r\nanswer" : "\r\n\r\nheader too large"));
    EXPECT_EQ(exchange.peer.unread(), fits ? 0U : 4U);
  }
}

TEST(HTTPConnectionTimeouts, LimitsTheTimeOfEveryStage) {
  const struct {
    std::string start;
    double pause;
    Seconds end;
  } cases[]{
      {"G", 16, kServiceLimits.headerTimeout},
      {"G", 1, kServiceLimits.headerTimeout},
      {post(3) + "x", 60, kServiceLimits.bodyIdleTimeout},
      {post(100), 59, kServiceLimits.maxConnectionDuration}, // every byte restarts the idle time
  };
  for (const auto &[start, pause, end] : cases) {
    Exchange exchange;
    exchange.peer.sends(start);
    for (int i = 0; i < 90; ++i)
      exchange.peer.pauses(Seconds(pause)).sends("x");
    EXPECT_THAT(exchange.serve(), IsEmpty()) << start;
    EXPECT_EQ(exchange.elapsed(), end) << start << pause;
    EXPECT_EQ(exchange.handler.aborts, start == "G" ? 0 : 1) << start;
  }
}

TEST_F(HTTPConnectionTest, AnswersExpectContinueAndReceivesTheBody) {
  peer.sends(post(6, "Expect: 100-continue\r\n"));
  peer.meanwhile([this] { EXPECT_EQ(peer.sent(), kContinueResponse); }).sends("012");
  peer.meanwhile([this] { EXPECT_EQ(handler.body(), "012"); }).sends("345surplus");
  EXPECT_EQ(serve(), std::string(kContinueResponse) + std::string(kReceived));
  EXPECT_EQ(handler.body(), "012345");
  EXPECT_TRUE(peer.outputFinished());
}

TEST_F(HTTPConnectionTest, AnswersAFailedWriteWithoutReadingOn) {
  handler.onWrite = [] { return IOResult<void>(std::unexpected(std::make_error_code(std::errc::io_error))); };
  peer.sends(post(9) + "012").sends("345");
  EXPECT_THAT(serve(), AllOf(StartsWith("HTTP/1.1 500 "), EndsWith("\r\n\r\nwrite failed")));
  EXPECT_EQ(peer.unread(), 3U);
  EXPECT_EQ(handler.aborts, 1);
}

TEST(HTTPConnectionReject, DrainsTheBodyOfARejectedRequestWithinLimits) {
  for (const bool slow : {false, true}) {
    Exchange exchange;
    exchange.handler.decide = [](const HTTPRequestHead &) {
      return HTTPReject{HTTPResponse::text(403, "forbidden")};
    };
    exchange.limits.rejectDrainBytes = slow ? 50'000 : 1000;
    exchange.peer.sends(post(50'000, "Expect: 100-continue\r\n"));
    exchange.peer.meanwhile([&] {
      const auto sent = exchange.peer.sent();
      EXPECT_THAT(sent, AllOf(StartsWith("HTTP/1.1 403 "), EndsWith("\r\n\r\nforbidden")));
      EXPECT_TRUE(exchange.peer.outputFinished());
    });
    for (int i = 0; i < 50; ++i)
      exchange.peer.pauses(Seconds(slow ? 0.3 : 0)).sends(std::string(400, 'x'));
    exchange.serve();
    EXPECT_EQ(exchange.peer.unread(), 47U * 400); // the third exceeds the budget, the fourth the time
    EXPECT_EQ(exchange.elapsed(), slow ? kServiceLimits.rejectDrainTimeout : Seconds(0));
  }
}

TEST_F(HTTPConnectionTest, AbortsTheBodyWhenClosedFromAnotherThread) {
  peer.sends(post(3) + "x").waitsForCancel();
  std::thread closing([this] {
    peer.awaitWaiter();
    connection->close();
  });
  serve();
  closing.join();
  EXPECT_THAT(peer.sent(), IsEmpty());
  EXPECT_EQ(handler.aborts, 1);
  EXPECT_EQ(handler.finishes, 0);
}

TEST(HTTPConnectionFailures, EndsTheBodyOnceWhicheverCallFails) {
  for (int nth = 1;; ++nth) {
    Exchange exchange;
    exchange.peer.sends("POST /x HTTP/1.1\r\nExpect: 100-continue\r\n").sends("Content-Length: 6\r\n\r\n01");
    exchange.peer.sends("23").sends("45").takesAtMost(40).breaksAtCall(nth);
    exchange.serve();
    const int ends = exchange.handler.finishes + exchange.handler.aborts;
    EXPECT_EQ(ends, exchange.handler.requests().empty() ? 0 : 1) << nth;
    EXPECT_EQ(exchange.handler.finishes == 1, exchange.handler.body() == "012345") << nth;
    if (exchange.peer.calls() < nth) {
      EXPECT_GT(nth, 8);
      EXPECT_THAT(exchange.peer.sent(), EndsWith(kReceived));
      break;
    }
  }
}

TEST(HTTPConnectionShared, SendsSharedBodiesCompletely) {
  for (const std::size_t bytes : {0U, 5U, 100'000U}) {
    auto response = HTTPResponse::text(200, "ignored");
    std::string content(bytes, '\0');
    for (std::size_t i = 0; i < bytes; ++i)
      content[i] = static_cast<char>(i * 31 >> 3);
    response.sharedBody = std::make_shared<const std::string>(content);
    for (const std::string &request :
         {std::string(kGet), post(3) + "abc", std::string("HEAD /x HTTP/1.1\r\n\r\n")}) {
      Exchange exchange;
      exchange.handler.decide = [&](const HTTPRequestHead &head) -> HTTPRouteDecision {
        return head.method == "POST" ? HTTPRouteDecision(HTTPReject{response}) : HTTPRespond{response};
      };
      exchange.peer.sends(request).takesAtMost(30'000);
      const bool headOnly = request.starts_with("HEAD");
      EXPECT_THAT(exchange.serve(), AllOf(HasSubstr("\r\nContent-Length: " + std::to_string(bytes) + "\r\n"),
                                          EndsWith("\r\n\r\n" + (headOnly ? std::string() : content))));
      EXPECT_TRUE(exchange.peer.outputFinished());
    }
  }
}

TEST(HTTPConnectionDownload, KeepsTheAnnouncedLengthOfADownload) {
  const test::TemporaryFolder folder;
  std::string content(600'000, '\0'); // two and a half chunks of the file
  for (std::size_t i = 0; i < content.size(); ++i)
    content[i] = static_cast<char>(i * 31 >> 3);
  for (const std::string_view what : {"grown", "cut", "gone", "no reader"}) {
    const auto file = folder.write("a.jpg", content);
    Exchange exchange;
    exchange.handler.decide = [response = HTTPResponse::file(file, "image/jpeg").value()](const auto &) {
      return HTTPRespond{response};
    };
    if (what == "grown")
      folder.write("a.jpg", content + what.data());
    else if (what == "cut")
      fs::resize_file(file, 300'000);
    else if (what == "gone")
      fs::remove(file);
    else
      exchange.peer.stopsReadingAfter(2);
    exchange.peer.sends(kGet).takesAtMost(100'000).readsAfter(Seconds(59));
    const std::string answer = exchange.serve();
    EXPECT_THAT(answer, HasSubstr("\r\nContent-Length: 600000\r\n")) << what;
    EXPECT_EQ(answer.ends_with("\r\n\r\n" + content), what == "grown") << what;
    EXPECT_EQ(exchange.peer.outputFinished(), what == "grown") << what;
  }
}

} // namespace
} // namespace fennick

#include "FennickCore/HTTP/HTTPConnection.h"

#include "tests/HTTP/RecordingHandler.h"
#include "tests/Support/ScriptedStream.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using namespace std::literals;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr std::string_view kGet = "GET /x HTTP/1.1\r\n\r\n";

std::string post(std::size_t length, std::string_view headers = "") {
  return "POST /x HTTP/1.1\r\nContent-Length: " + std::to_string(length) + "\r\n" + std::string(headers) +
         "\r\n";
}

// One connection with a peer to script, a clock to move and a handler to instruct. `serve` plays the script
// and gives what the peer was sent.
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

  void connect() {
    connection =
        std::make_unique<HTTPConnection>(std::move(stream), "192.168.1.20", handler, limits, limiter, clock);
    connection->onClose = [this] { ++closes; };
  }
  std::string serve() {
    connect();
    connection->start();
    EXPECT_EQ(closes, 1);
    return peer.sent();
  }
  void respondWithFile(const fs::path &file) {
    handler.decide = [file](const HTTPRequestHead &) {
      return HTTPRespond{HTTPResponse::file(file, "image/jpeg").value()};
    };
  }
  void rejectAll() {
    handler.decide = [](const HTTPRequestHead &) { return HTTPReject{HTTPResponse::text(403, "forbidden")}; };
  }
  [[nodiscard]] Seconds elapsed() const { return clock.uptime() - begin; }
  [[nodiscard]] test::BodyRecord &body() { return handler.record; }
  void expectAbortedInSilence(std::string_view what = "") {
    EXPECT_THAT(peer.sent(), IsEmpty()) << what;
    EXPECT_EQ(body().aborts, 1) << what;
    EXPECT_EQ(body().finishes, 0) << what;
  }
};

class HTTPConnectionTest : public ::testing::Test, protected Exchange {};

constexpr std::string_view kReceived = "HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\n"
                                       "Content-Length: 8\r\nCache-Control: no-store\r\n"
                                       "Connection: close\r\n\r\nreceived";

TEST_F(HTTPConnectionTest, ABodyArrivesWholeAndIsAnswered) {
  peer.sends(post(10)).sends("01234").sends("56789");
  EXPECT_EQ(serve(), kReceived);
  EXPECT_TRUE(peer.outputFinished());
  EXPECT_EQ(body().body(), "0123456789");
  EXPECT_EQ(body().finishes, 1);
  EXPECT_EQ(body().aborts, 0);
  EXPECT_EQ(handler.requests().front().remote, "192.168.1.20");
}

TEST(HTTPConnectionCuts, EveryRequestCutInTwoMeansTheSameAsUncut) {
  const std::string requests[]{
      post(10, "Expect: 100-continue\r\n") + "0123456789surplus",
      post(0),
      "HEAD /x?a=%41+b&c HTTP/1.0\r\nX-Name: \xE9\r\nX: 1\r\nX: 2\r\n\r\n",
      "GET /x HTTP/1.1\nHost: a\nX-Key: abc\r\n\r\n",
      "GET /x HTTP/1.1\r\nno colon\r\n\r\n",
      "GET /x\r\n\r\n",
      "\r\n\r\n",
      "GET /x HTTP/1.1\r\n: empty name\r\n\r\n",
  };
  for (const auto &request : requests) {
    Exchange whole;
    whole.peer.sends(request);
    const std::string answer = whole.serve();
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 ")) << request;
    for (std::size_t cut = 1; cut < request.size(); ++cut) {
      Exchange exchange;
      exchange.peer.sends(request.substr(0, cut)).sends(request.substr(cut));
      EXPECT_EQ(exchange.serve(), answer) << cut << " in " << request;
      EXPECT_EQ(exchange.handler.requests(), whole.handler.requests()) << cut << " in " << request;
      EXPECT_EQ(exchange.body().body(), whole.body().body()) << cut << " in " << request;
      EXPECT_EQ(exchange.body().finishes, whole.body().finishes) << cut << " in " << request;
    }
  }
}

TEST(HTTPConnectionHead, ExactlyTheLimitIsAcceptedAndOneByteMoreIsNot) {
  for (const std::size_t length : {16384U, 16385U}) {
    Exchange exchange;
    std::string head = "GET /x HTTP/1.1\r\nX: ";
    head.append(length - head.size(), 'x');
    exchange.peer.sends(head + "\r\n\r\n");
    const std::string answer = exchange.serve();
    if (length == 16384)
      EXPECT_THAT(answer, EndsWith("\r\n\r\nanswer"));
    else
      EXPECT_THAT(answer, StartsWith("HTTP/1.1 431 Request Header Fields Too Large\r\n"));
    EXPECT_EQ(exchange.handler.requests().size(), length == 16384 ? 1U : 0U);
  }
}

TEST_F(HTTPConnectionTest, AnEndlessHeadIsAnsweredAsSoonAsItPassesTheLimit) {
  for (int i = 0; i < 20; ++i)
    peer.sends(std::string(1000, 'x'));
  EXPECT_THAT(serve(), EndsWith("\r\n\r\nheader too large"));
  EXPECT_EQ(peer.unread(), 3000U);
}

TEST(HTTPConnectionTimeouts, AHeadHasItsTimeHoweverItTrickles) {
  for (const double pause : {16.0, 15.0, 7.0, 1.0}) {
    Exchange exchange;
    for (int i = 0; i < 20; ++i)
      exchange.peer.sends("G").pauses(Seconds(pause));
    EXPECT_THAT(exchange.serve(), IsEmpty()) << pause;
    EXPECT_EQ(exchange.elapsed(), exchange.limits.headerTimeout) << pause;
  }
}

TEST_F(HTTPConnectionTest, EveryPieceOfABodyBeginsTheIdleTimeAnew) {
  peer.sends(post(3));
  for (int i = 0; i < 3; ++i)
    peer.pauses(Seconds(59.9)).sends("x");
  EXPECT_EQ(serve(), kReceived);
}

TEST_F(HTTPConnectionTest, ASilentBodyIsAbortedInSilence) {
  peer.sends(post(3) + "x").pauses(Seconds(60)).sends("xx");
  serve();
  expectAbortedInSilence();
  EXPECT_EQ(elapsed(), limits.bodyIdleTimeout);
}

TEST_F(HTTPConnectionTest, ALifetimeEndsWhateverTheConnectionIsDoing) {
  peer.sends(post(100));
  for (int i = 0; i < 100; ++i)
    peer.pauses(Seconds(50)).sends("x");
  serve();
  expectAbortedInSilence();
  EXPECT_EQ(elapsed(), limits.maxConnectionDuration);
}

TEST(HTTPConnectionEnds, APeerThatGoesAbortsItsBodyInSilence) {
  for (const bool reset : {false, true}) {
    for (const auto &start : {post(3), post(3) + "x"}) {
      Exchange exchange;
      exchange.peer.sends(start);
      reset ? exchange.peer.resets() : exchange.peer.ends();
      exchange.serve();
      exchange.expectAbortedInSilence(start);
    }
  }
}

TEST_F(HTTPConnectionTest, BytesBehindTheHeadReachTheSinkBeforeAnythingElseIsRead) {
  peer.sends(post(6) + "012").meanwhile([this] { EXPECT_EQ(body().body(), "012"); }).sends("345surplus");
  EXPECT_EQ(serve(), kReceived);
  EXPECT_EQ(body().body(), "012345");
}

TEST_F(HTTPConnectionTest, AClientThatWaitsIsToldToContinueBeforeItsBodyIsRead) {
  peer.sends(post(3, "Expect: 100-continue\r\n"));
  peer.meanwhile([this] { EXPECT_EQ(peer.sent(), kContinueResponse); }).sends("012");
  EXPECT_EQ(serve(), std::string(kContinueResponse) + std::string(kReceived));
}

TEST(HTTPConnectionContinue, NobodyIsToldToContinueWhoseBodyIsNotTaken) {
  for (const std::string_view decision : {"respond", "reject", "receive nothing"}) {
    Exchange exchange;
    exchange.handler.decide = [&](const HTTPRequestHead &) -> HTTPRouteDecision {
      if (decision == "respond")
        return HTTPRespond{HTTPResponse::notFound()};
      if (decision == "reject")
        return HTTPReject{HTTPResponse::notFound()};
      return exchange.handler.receive(0);
    };
    exchange.peer.sends(post(3, "Expect: 100-continue\r\n"));
    const std::string answer = exchange.serve();
    EXPECT_THAT(answer, testing::Not(HasSubstr("100 Continue"))) << decision;
    EXPECT_THAT(answer, HasSubstr("Connection: close")) << decision;
  }
}

TEST_F(HTTPConnectionTest, AFailedWriteAbortsTheBodyAndIsAnsweredWithoutReadingOn) {
  body().failingWrite = 2;
  peer.sends(post(9) + "012").sends("345").sends("678");
  EXPECT_THAT(serve(), testing::AllOf(StartsWith("HTTP/1.1 500 "), EndsWith("\r\n\r\nwrite failed")));
  EXPECT_EQ(peer.unread(), 3U);
  EXPECT_EQ(body().aborts, 1);
  EXPECT_EQ(body().finishes, 0);
}

TEST(HTTPConnectionReject, ARejectedBodyIsDroppedUpToTheBudgetAfterTheAnswer) {
  Exchange exchange;
  exchange.rejectAll();
  exchange.limits.rejectDrainBytes = 1000;
  exchange.peer.sends(post(50'000));
  exchange.peer.meanwhile([&] {
    EXPECT_THAT(exchange.peer.sent(), EndsWith("\r\n\r\nforbidden"));
    EXPECT_TRUE(exchange.peer.outputFinished());
  });
  for (int i = 0; i < 50; ++i)
    exchange.peer.sends(std::string(400, 'x'));
  exchange.serve();
  EXPECT_EQ(exchange.peer.unread(), 47U * 400);
}

TEST_F(HTTPConnectionTest, ARejectedBodyIsDroppedForItsTimeAtMost) {
  rejectAll();
  peer.sends(post(50'000));
  for (int i = 0; i < 50; ++i)
    peer.pauses(Seconds(0.3)).sends("x");
  serve();
  EXPECT_EQ(elapsed(), limits.rejectDrainTimeout);
}

TEST(HTTPConnectionReject, WithoutABodyOrWithAnAnswerNothingIsReadOn) {
  for (const auto &head : {std::string(kGet), post(0), "POST / HTTP/1.1\r\nContent-Length: -5\r\n\r\n"s,
                           "POST / HTTP/1.1\r\nContent-Length: 99999999999999999999\r\n\r\n"s}) {
    Exchange exchange;
    exchange.rejectAll();
    exchange.peer.sends(head).sends("rest");
    exchange.serve();
    EXPECT_EQ(exchange.peer.unread(), 4U) << head;
  }
  Exchange answered;
  answered.handler.decide = [](const HTTPRequestHead &) { return HTTPRespond{HTTPResponse::notFound()}; };
  answered.peer.sends(post(4)).sends("rest");
  answered.serve();
  EXPECT_EQ(answered.peer.unread(), 4U);
}

TEST(HTTPConnectionBans, RejectedAndUnreadableRequestsCountTowardsABanAndAnswersDoNot) {
  const auto isBannedAfter = [&](bool rejects, std::string_view request) {
    Exchange exchange;
    if (rejects)
      exchange.rejectAll();
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

TEST(HTTPConnectionBans, ABannedPeerNeverReachesTheHandlerUntilItsBanIsOver) {
  for (const bool over : {false, true}) {
    Exchange exchange;
    for (int i = 0; i < 10; ++i)
      exchange.limiter.recordFailure("192.168.1.20", exchange.clock.uptime());
    if (over)
      exchange.clock.advance(Seconds(300));
    exchange.peer.sends(kGet);
    EXPECT_THAT(exchange.serve(), EndsWith(over ? "\r\n\r\nanswer" : "\r\n\r\ntoo many requests"));
    EXPECT_EQ(exchange.handler.requests().size(), over ? 1U : 0U);
  }
}

TEST_F(HTTPConnectionTest, AnAnswerToHeadHasItsLengthAndNoBody) {
  peer.sends("HEAD /x HTTP/1.1\r\n\r\n");
  EXPECT_THAT(serve(), testing::AllOf(HasSubstr("\r\nContent-Length: 6\r\n"), EndsWith("\r\n\r\n")));
}

class HTTPDownloadTest : public HTTPConnectionTest {
protected:
  static constexpr std::size_t kSize = 600'000; // two steps of the file and a half

  [[nodiscard]] static std::string content() {
    std::string bytes(kSize, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
      bytes[i] = static_cast<char>(i * 31 >> 3);
    return bytes;
  }
  static std::string bodyOf(const std::string &answer) { return answer.substr(answer.find("\r\n\r\n") + 4); }

  test::TemporaryFolder folder;
  const fs::path file = folder.write("a.jpg", content());
};

TEST_F(HTTPDownloadTest, AFileIsSentWhole) {
  respondWithFile(file);
  peer.sends(kGet);
  const std::string answer = serve();
  EXPECT_THAT(answer, HasSubstr("\r\nContent-Length: 600000\r\n"));
  EXPECT_TRUE(bodyOf(answer) == content());
  EXPECT_TRUE(peer.outputFinished());
}

TEST_F(HTTPDownloadTest, HeadGetsTheLengthAndNoBody) {
  respondWithFile(file);
  peer.sends("HEAD /x HTTP/1.1\r\n\r\n");
  EXPECT_THAT(serve(), testing::AllOf(HasSubstr("\r\nContent-Length: 600000\r\n"), EndsWith("\r\n\r\n")));
  EXPECT_TRUE(peer.outputFinished());
}

TEST_F(HTTPDownloadTest, AnUploadMayBeAnsweredWithAFile) {
  body().answer = HTTPResponse::file(file, "image/jpeg").value();
  peer.sends(post(3) + "abc");
  EXPECT_TRUE(bodyOf(serve()) == content());
}

TEST_F(HTTPDownloadTest, ASlowReaderIsServedForAsLongAsItReads) {
  respondWithFile(file);
  peer.sends(kGet).takesAtMost(100'000).readsAfter(Seconds(59));
  EXPECT_TRUE(bodyOf(serve()) == content());
}

TEST_F(HTTPDownloadTest, AReaderThatStopsIsDroppedAfterTheIdleTime) {
  respondWithFile(file);
  peer.sends(kGet).stopsReadingAfter(2);
  EXPECT_LT(bodyOf(serve()).size(), kSize);
  EXPECT_EQ(elapsed(), limits.bodyIdleTimeout);
  EXPECT_FALSE(peer.outputFinished());
}

TEST_F(HTTPDownloadTest, TheAnnouncedLengthStandsWhateverBecomesOfTheFile) {
  const auto serveAfter = [&](const std::function<void()> &change) {
    folder.write("a.jpg", content());
    Exchange exchange;
    const auto response = HTTPResponse::file(file, "image/jpeg").value();
    change();
    exchange.handler.decide = [&](const HTTPRequestHead &) { return HTTPRespond{response}; };
    exchange.peer.sends(kGet);
    const std::string answer = exchange.serve();
    EXPECT_THAT(answer, HasSubstr("\r\nContent-Length: 600000\r\n"));
    return std::pair(bodyOf(answer).size(), exchange.peer.outputFinished());
  };
  EXPECT_EQ(serveAfter([&] { folder.write("a.jpg", content() + "grown"); }), std::pair(kSize, true));
  EXPECT_EQ(serveAfter([&] { fs::resize_file(file, 300'000); }), std::pair(std::size_t{300'000}, false));
  EXPECT_EQ(serveAfter([&] { fs::remove(file); }), std::pair(std::size_t{0}, false));
}

TEST_F(HTTPConnectionTest, AConnectionClosedFromAnotherThreadAbortsItsBody) {
  peer.sends(post(3) + "x").waitsForCancel();
  connect();
  std::thread serving([this] { connection->start(); });
  peer.awaitWaiter();
  connection->close();
  serving.join();
  expectAbortedInSilence();
  EXPECT_EQ(closes, 1);
}

TEST(HTTPConnectionFailures, WhateverIsThrownTheBodyIsAbortedAndTheEndTold) {
  const auto thrower = [] { throw std::runtime_error("out of memory"); };
  Exchange routing;
  routing.handler.decide = [&](const HTTPRequestHead &) -> HTTPRouteDecision {
    thrower();
    return HTTPRespond{};
  };
  routing.peer.sends(kGet);
  EXPECT_THROW(routing.serve(), std::runtime_error);
  EXPECT_EQ(routing.closes, 1);

  Exchange writing;
  writing.body().onWrite = thrower;
  writing.peer.sends(post(3) + "abc");
  EXPECT_THROW(writing.serve(), std::runtime_error);
  EXPECT_EQ(writing.closes, 1);
  writing.expectAbortedInSilence();
}

TEST(HTTPConnectionFailures, WhicheverCallFailsTheBodyEndsOnceAndTheEndIsToldOnce) {
  for (int nth = 1;; ++nth) {
    Exchange exchange;
    exchange.peer.sends("POST /x HTTP/1.1\r\nExpect: 100-continue\r\n").sends("Content-Length: 6\r\n\r\n01");
    exchange.peer.sends("23").sends("45").takesAtMost(40).breaksAtCall(nth);
    exchange.serve();
    const int ends = exchange.body().finishes + exchange.body().aborts;
    EXPECT_EQ(ends, exchange.handler.requests().empty() ? 0 : 1) << nth;
    EXPECT_EQ(exchange.body().finishes == 1, exchange.body().body() == "012345") << nth;
    if (exchange.peer.calls() < nth) {
      EXPECT_GT(nth, 8);
      EXPECT_THAT(exchange.peer.sent(), EndsWith(kReceived));
      break;
    }
  }
}

TEST_F(HTTPDownloadTest, WhicheverCallFailsADownloadEndsOnce) {
  for (int nth = 1;; ++nth) {
    Exchange exchange;
    exchange.respondWithFile(file);
    exchange.peer.sends("GET /x HTTP/1.1\r\n").sends("\r\n").takesAtMost(100'000).breaksAtCall(nth);
    const std::string answer = exchange.serve();
    EXPECT_EQ(exchange.peer.outputFinished(), exchange.peer.calls() < nth) << nth;
    if (exchange.peer.calls() < nth) {
      EXPECT_TRUE(bodyOf(answer) == content());
      break;
    }
  }
}

} // namespace
} // namespace fennick

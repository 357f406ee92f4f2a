#include "FennickCore/Network/LocalNetworkProbe.h"

#include "FennickCore/Platform/Network/ByteStream.h"
#include "FennickCore/Platform/Network/ListeningSocket.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <future>
#include <latch>
#include <memory>
#include <thread>
#include <tuple>

namespace fennick {
namespace {

using Outcome = LocalNetworkProbe::Outcome;
using Kind = Outcome::Kind;

constexpr Seconds kLong{100}; // never waited for
const std::string kHost = "127.0.0.1";

// A server that runs a function on its one connection and closes it.
class Server {
public:
  explicit Server(std::function<void(SocketStream &)> act)
      : act_(std::move(act)), thread_([this] { serve(); }) {}
  ~Server() { listener_.wake(); }
  Server(const Server &) = delete;
  Server &operator=(const Server &) = delete;

  [[nodiscard]] std::uint16_t port() const { return listener_.port(); }

private:
  void serve() {
    auto accepted = listener_.accept();
    if (!accepted)
      return;
    const SystemClock clock;
    SocketStream stream(std::move(accepted->socket), clock);
    act_(stream);
  }

  const std::function<void(SocketStream &)> act_;
  ListeningSocket listener_ = ListeningSocket::open(0).value();
  std::jthread thread_; // last: it uses all of the above
};

// Reads the request, or `most` bytes of it.
std::string hear(SocketStream &stream, std::size_t most = 256) {
  std::array<std::byte, 256> piece{};
  std::string heard;
  while (heard.size() < most && !heard.ends_with("\r\n\r\n")) {
    const auto count = stream.receive(std::span(piece).first(most - heard.size()), Uptime::max());
    if (count.value_or(0) == 0)
      break;
    heard.append(reinterpret_cast<const char *>(piece.data()), *count);
  }
  return heard;
}

void say(SocketStream &stream, const std::string &text) {
  EXPECT_TRUE(stream.send(std::as_bytes(std::span(text)), Uptime::max()));
}

void hearAndWait(SocketStream &stream) {
  hear(stream);
  EXPECT_EQ(hear(stream), "") << "more than the request";
}

Outcome outcomeAt(const std::string &host, std::uint16_t port, Seconds timeout = kLong) {
  std::promise<Outcome> outcome; // a second one would throw
  const auto probe = LocalNetworkProbe::probe(host, port, timeout,
                                              [&](Outcome told) { outcome.set_value(std::move(told)); });
  return outcome.get_future().get();
}

TEST(LocalNetworkProbeTest, DecidesByTheFirstBytesOfTheHealthAnswer) {
  const Outcome bad{Kind::unreachable, "bad response"};
  const std::tuple<std::string, Outcome> answers[] = {
      {"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok", {Kind::reachable}},
      {"HTTP/1.1 200" + std::string(10'000, ' '), {Kind::reachable}},
      {"HTTP/1.0 200 OK\r\n\r\n", bad},
      {"HTTP/1.1 404 Not Found\r\n\r\n", bad},
      {"", bad},
  };
  for (const auto &[answer, outcome] : answers) {
    std::string heard;
    {
      Server server([&, text = answer](SocketStream &stream) {
        heard = hear(stream);
        say(stream, text);
      });
      EXPECT_EQ(outcomeAt(kHost, server.port()), outcome) << answer.substr(0, 40);
    }
    EXPECT_EQ(heard, "GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
  }
}

TEST(LocalNetworkProbeTest, ReadsAnAnswerInPieces) {
  for (const auto &[first, kind] :
       {std::pair("HTTP/1.1 200 OK", Kind::reachable), std::pair("HTTP", Kind::unreachable)}) {
    Server server([text = std::string(first)](SocketStream &stream) {
      say(stream, text);
      hearAndWait(stream); // the rest never comes
    });
    EXPECT_EQ(outcomeAt(kHost, server.port()).kind, kind) << first;
  }
}

TEST(LocalNetworkProbeTest, ReportsSystemErrors) {
  const auto refusal = [](std::errc error) {
    return Outcome{Kind::unreachable, std::make_error_code(error).message()};
  };
  const std::uint16_t closed = ListeningSocket::open(0)->port();
  EXPECT_EQ(outcomeAt(kHost, closed), refusal(std::errc::connection_refused));
  EXPECT_EQ(outcomeAt("nowhere", closed), refusal(std::errc::invalid_argument));
  Server deaf([](SocketStream &stream) { hear(stream, 1); }); // a connection closed unread is reset
  EXPECT_EQ(outcomeAt(kHost, deaf.port()), refusal(std::errc::connection_reset));
}

TEST(LocalNetworkProbeTest, TimesOutOnASilentServer) {
  Server server(hearAndWait);
  EXPECT_EQ(outcomeAt(kHost, server.port(), Seconds(0.05)), Outcome{Kind::timeout});
}

// Waiting for the time-out would exceed the suite's time limit.
TEST(LocalNetworkProbeTest, ReportsNothingAfterACancellation) {
  std::latch heard(1);
  Server server([&](SocketStream &stream) {
    hear(stream, 1);
    heard.count_down();
    hearAndWait(stream);
  });
  auto probe = LocalNetworkProbe::probe(kHost, server.port(), std::chrono::hours(1),
                                        [](const Outcome &) { ADD_FAILURE() << "it told"; });
  heard.wait();
  probe.reset();
}

} // namespace
} // namespace fennick

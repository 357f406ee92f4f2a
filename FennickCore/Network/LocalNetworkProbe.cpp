#include "FennickCore/Network/LocalNetworkProbe.h"

#include "FennickCore/Platform/Network/ClientSocket.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

namespace fennick {

namespace {

using Outcome = LocalNetworkProbe::Outcome;
using Kind = Outcome::Kind;

// Sends the health request and returns the first bytes of the answer.
IOResult<std::string> askForHealth(ClientSocket &socket, const std::string &host, std::uint16_t port) {
  if (const auto connected = socket.connect(host, port); !connected)
    return std::unexpected(connected.error());
  const std::string request = "GET /health HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n";
  if (const auto sent = socket.send(std::as_bytes(std::span(request))); !sent)
    return std::unexpected(sent.error());
  std::array<char, 4096> answer{};
  const auto count = socket.receive(std::as_writable_bytes(std::span(answer)));
  if (!count)
    return std::unexpected(count.error());
  return std::string(answer.data(), *count);
}

Outcome outcomeOf(const IOResult<std::string> &answer) {
  if (answer)
    return answer->starts_with("HTTP/1.1 200") ? Outcome{Kind::reachable}
                                               : Outcome{Kind::unreachable, "bad response"};
  if (answer.error() == std::errc::stream_timeout)
    return {Kind::timeout};
  return {Kind::unreachable, answer.error().message()};
}

} // namespace

struct LocalNetworkProbe::State {
  explicit State(ClientSocket made) : socket(std::move(made)) {}
  ~State() { socket.cancel(); }

  ClientSocket socket;
  SerialQueue queue{"fennick.probe"}; // last: its task uses the socket
};

LocalNetworkProbe::LocalNetworkProbe(std::unique_ptr<State> state) : state_(std::move(state)) {}
LocalNetworkProbe::~LocalNetworkProbe() = default;

std::unique_ptr<LocalNetworkProbe> LocalNetworkProbe::probe(const std::string &host, std::uint16_t port,
                                                            Seconds timeout,
                                                            std::function<void(Outcome)> done) {
  const auto refused = [&](std::string why) {
    done({Kind::unreachable, std::move(why)});
    return std::make_unique<LocalNetworkProbe>(nullptr);
  };
  if (port == 0)
    return refused("bad port");
  auto socket = ClientSocket::make(after(SystemClock().uptime(), std::max(Seconds(0), timeout)));
  if (!socket)
    return refused(socket.error().message());
  std::unique_ptr<State> state;
  try {
    state = std::make_unique<State>(std::move(*socket));
  } catch (const std::system_error &error) {
    return refused(error.code().message());
  }
  state->queue.post([&asked = state->socket, host, port, done = std::move(done)] {
    const auto answer = askForHealth(asked, host, port);
    if (answer || answer.error() != std::errc::operation_canceled)
      done(outcomeOf(answer));
  });
  return std::make_unique<LocalNetworkProbe>(std::move(state));
}

} // namespace fennick

#include "FennickCore/HTTP/HTTPConnection.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace fennick {

namespace {

constexpr std::size_t kChunkBytes = 262144; // most bytes of one receive, and of one step of a file

constexpr std::size_t kSentWithHead =
    32768; // most bytes of a shared body that are sent together with the head

// The connection's buffer. The thread keeps it for the next connection: the page faults of a new one would
// cost a small photo several per cent of its time.
std::span<std::byte> threadBuffer(std::size_t size) {
  static thread_local std::unique_ptr<std::byte[]> buffer;
  static thread_local std::size_t capacity = 0;
  if (capacity < size) {
    buffer = std::make_unique_for_overwrite<std::byte[]>(size);
    capacity = size;
  }
  return {buffer.get(), size};
}

constexpr std::string_view kHeadEnd = "\r\n\r\n";

// Returns how many bytes at the end of `text` may be the beginning of the blank line that ends a head.
std::size_t endBegun(std::string_view text) {
  for (std::size_t length = kHeadEnd.size() - 1; length > 0; --length)
    if (text.ends_with(kHeadEnd.substr(0, length)))
      return length;
  return 0;
}

std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

std::string_view textOf(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

} // namespace

HTTPConnection::HTTPConnection(std::unique_ptr<ByteStream> stream, std::string remote,
                               HTTPRequestHandler &handler, const HTTPLimits &limits,
                               RateLimiter &rateLimiter, const Clock &clock)
    : stream_(std::move(stream)), remote_(std::move(remote)), handler_(handler), limits_(limits),
      rateLimiter_(rateLimiter), clock_(clock) {}

void HTTPConnection::close() { stream_->cancel(); }

void HTTPConnection::start() {
  // Aborts the sink and reports the end on every way out.
  struct AtEnd {
    HTTPConnection &connection;
    ~AtEnd() { connection.finish(); }
  } const atEnd{*this};

  lifetimeEnd_ = after(clock_.uptime(), limits_.maxConnectionDuration);
  const auto received = receiveHead();
  if (!received)
    return;
  const auto bytes = std::span<const std::byte>(buffer_.data(), *received);
  const std::size_t headLength = textOf(bytes).find(kHeadEnd);
  handleHead(textOf(bytes).substr(0, headLength), bytes.subspan(headLength + kHeadEnd.size()));
}

void HTTPConnection::finish() {
  if (sink_)
    std::exchange(sink_, nullptr)->abort();
  if (onClose)
    onClose();
}

Uptime HTTPConnection::deadlineIn(Seconds length) const {
  return std::min(after(clock_.uptime(), length), lifetimeEnd_);
}

// Fills the buffer until it holds a whole head within the limits. Returns how many bytes arrived, which may
// include the start of a body, or nullopt if the connection is over or an overlong head was answered.
std::optional<std::size_t> HTTPConnection::receiveHead() {
  const auto limit = static_cast<std::size_t>(limits_.maxHeaderBytes);
  buffer_ = threadBuffer(limit + kHeadEnd.size() + kChunkBytes);
  const Uptime deadline = deadlineIn(limits_.headerTimeout);
  std::size_t used = 0;
  while (true) {
    const auto count = stream_->receive(std::span(buffer_.data() + used, kChunkBytes), deadline);
    if (!count || *count == 0)
      return std::nullopt;
    const std::size_t searchFrom = used < 3 ? 0 : used - 3;
    used += *count;
    const std::string_view text = textOf({buffer_.data(), used});
    const std::size_t end = text.find(kHeadEnd, searchFrom);
    const bool found = end != std::string_view::npos;
    if ((found ? end : used - endBegun(text)) > limit) {
      respond(HTTPResponse::text(431, "header too large"));
      return std::nullopt;
    }
    if (found)
      return used;
  }
}

void HTTPConnection::handleHead(std::string_view bytes, std::span<const std::byte> rest) {
  const Uptime now = clock_.uptime();
  const auto head = HTTPRequestHead::parse(bytes);
  if (!head) {
    rateLimiter_.recordFailure(remote_, now);
    return respond(HTTPResponse::text(400, "bad request"));
  }
  isHead_ = head->method == "HEAD";
  if (rateLimiter_.isBanned(remote_, now))
    return respond(HTTPResponse::text(429, "too many requests"));

  HTTPRouteDecision decision = handler_.route(*head, remote_);
  if (const auto *answer = std::get_if<HTTPRespond>(&decision))
    respond(answer->response);
  else if (const auto *refusal = std::get_if<HTTPReject>(&decision))
    reject(*head, *refusal);
  else
    receiveBody(*head, std::get<HTTPReceive>(std::move(decision)), rest);
}

void HTTPConnection::receiveBody(const HTTPRequestHead &head, HTTPReceive decision,
                                 std::span<const std::byte> rest) {
  sink_ = std::move(decision.sink);
  std::int64_t remaining = decision.expectedBytes;
  if (remaining > 0 && head.expectsContinue() &&
      !sendAll(bytesOf(kContinueResponse), deadlineIn(limits_.bodyIdleTimeout)))
    return;
  while (remaining > 0) {
    if (rest.empty()) {
      const auto count =
          stream_->receive(std::span(buffer_.data(), kChunkBytes), deadlineIn(limits_.bodyIdleTimeout));
      if (!count || *count == 0)
        return;
      rest = std::span(buffer_.data(), *count);
    }
    // Bytes beyond the declared length never reach the sink.
    rest = rest.first(static_cast<std::size_t>(std::min<std::int64_t>(std::ssize(rest), remaining)));
    if (!writeToSink(rest))
      return;
    remaining -= std::ssize(rest);
    rest = {};
  }
  const HTTPResponse response = std::exchange(sink_, nullptr)->finish();
  respond(response);
}

bool HTTPConnection::writeToSink(std::span<const std::byte> bytes) {
  if (sink_->write(bytes))
    return true;
  std::exchange(sink_, nullptr)->abort();
  respond(HTTPResponse::text(500, "write failed"));
  return false;
}

void HTTPConnection::reject(const HTTPRequestHead &head, const HTTPReject &rejection) {
  if (rejection.failure == HTTPReject::Failure::counted)
    rateLimiter_.recordFailure(remote_, clock_.uptime());
  if (head.contentLength().value_or(0) <= 0)
    return respond(rejection.response);
  const Uptime deadline = deadlineIn(limits_.rejectDrainTimeout);
  if (!sendBytes(rejection.response, deadline))
    return;
  stream_->finishOutput();
  drain(deadline);
}

// Reads on for a while, so that a client that is still sending its body reads the answer instead of seeing a
// reset.
void HTTPConnection::drain(Uptime deadline) {
  std::int64_t budget = limits_.rejectDrainBytes;
  while (budget > 0) {
    const auto count = stream_->receive(std::span(buffer_.data(), kChunkBytes), deadline);
    if (!count || *count == 0)
      return;
    budget -= static_cast<std::int64_t>(*count);
  }
}

void HTTPConnection::respond(const HTTPResponse &response) {
  if (response.bodyFile && !isHead_)
    return sendFile(response, *response.bodyFile);
  if (sendBytes(response, lifetimeEnd_))
    stream_->finishOutput();
}

// Sends a response whose body is in memory. The beginning of a shared body is copied behind the head, since a
// packet for the head alone costs more than the copy; the rest is sent from where it is.
bool HTTPConnection::sendBytes(const HTTPResponse &response, Uptime deadline) {
  std::string first = response.serialise(isHead_);
  if (isHead_ || !response.sharedBody)
    return sendAll(bytesOf(first), deadline);
  const std::string_view body = *response.sharedBody;
  const std::size_t begun = std::min(body.size(), kSentWithHead);
  first += body.substr(0, begun);
  return sendAll(bytesOf(first), deadline) && sendAll(bytesOf(body.substr(begun)), deadline);
}

void HTTPConnection::sendFile(const HTTPResponse &response, const std::filesystem::path &location) {
  if (!sendWhileRead(bytesOf(response.serialise(false))))
    return;
  auto file = ReadableFile::open(location);
  if (!file)
    return;
  std::int64_t remaining = response.bodyFileLength;
  while (remaining > 0) {
    const auto wanted = std::min<std::int64_t>(remaining, kChunkBytes);
    const auto chunk = std::span(buffer_.data(), static_cast<std::size_t>(wanted));
    const auto count = file->read(chunk);
    if (!count || *count == 0 || !sendWhileRead(chunk.first(*count)))
      return;
    remaining -= static_cast<std::int64_t>(*count);
  }
  stream_->finishOutput();
}

bool HTTPConnection::sendAll(std::span<const std::byte> bytes, Uptime deadline) {
  while (!bytes.empty()) {
    const auto count = stream_->send(bytes, deadline);
    if (!count)
      return false;
    bytes = bytes.subspan(*count);
  }
  return true;
}

// Sends while the peer keeps reading: the idle time-out starts again with every byte sent.
bool HTTPConnection::sendWhileRead(std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const auto count = stream_->send(bytes, deadlineIn(limits_.bodyIdleTimeout));
    if (!count)
      return false;
    bytes = bytes.subspan(*count);
  }
  return true;
}

} // namespace fennick

#include "tests/Support/ScriptedStream.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace fennick::test {

ScriptedStream &ScriptedStream::sends(std::string_view bytes) {
  if (!bytes.empty())
    script_.emplace_back(Piece{std::string(bytes)});
  return *this;
}

ScriptedStream &ScriptedStream::pauses(Seconds length) {
  script_.emplace_back(Pause{length});
  return *this;
}

ScriptedStream &ScriptedStream::meanwhile(std::function<void()> action) {
  script_.emplace_back(Meanwhile{std::move(action)});
  return *this;
}

ScriptedStream &ScriptedStream::waitsForCancel() {
  script_.emplace_back(WaitForCancel{});
  return *this;
}

ScriptedStream &ScriptedStream::takesAtMost(std::size_t bytes) {
  mostTaken_ = bytes;
  return *this;
}

ScriptedStream &ScriptedStream::readsAfter(Seconds length) {
  readDelay_ = length;
  return *this;
}

ScriptedStream &ScriptedStream::stopsReadingAfter(int sends) {
  readsLeft_ = sends;
  return *this;
}

ScriptedStream &ScriptedStream::breaksAtCall(int nth) {
  brokenAt_ = nth;
  return *this;
}

std::expected<void, StreamError> ScriptedStream::enter(Uptime deadline) {
  {
    const Locked locked(lock_);
    if (cancelled_)
      return std::unexpected(StreamError::cancelled);
  }
  if (++calls_ >= brokenAt_)
    return std::unexpected(StreamError::failed);
  if (clock_.uptime() >= deadline)
    return std::unexpected(StreamError::timedOut);
  return {};
}

std::expected<void, StreamError> ScriptedStream::pass(Seconds length, Uptime deadline) {
  const Uptime end = after(clock_.uptime(), length);
  clock_.advanceTo(std::min(end, deadline));
  if (end >= deadline)
    return std::unexpected(StreamError::timedOut);
  return {};
}

ScriptedStream::Outcome ScriptedStream::timeOut(Uptime deadline) {
  clock_.advanceTo(deadline);
  return std::unexpected(StreamError::timedOut);
}

ScriptedStream::Outcome ScriptedStream::take(Piece &piece, std::span<std::byte> into) {
  const std::size_t count = std::min(piece.bytes.size(), into.size());
  std::memcpy(into.data(), piece.bytes.data(), count);
  piece.bytes.erase(0, count);
  if (piece.bytes.empty())
    script_.pop_front();
  return count;
}

ScriptedStream::Outcome ScriptedStream::receive(std::span<std::byte> into, Uptime deadline) {
  if (const auto entered = enter(deadline); !entered)
    return std::unexpected(entered.error());
  while (!script_.empty()) {
    if (auto *piece = std::get_if<Piece>(&script_.front()))
      return take(*piece, into);
    const Step step = std::move(script_.front());
    script_.pop_front();
    if (const auto *pause = std::get_if<Pause>(&step)) {
      if (const auto passed = pass(pause->length, deadline); !passed)
        return std::unexpected(passed.error());
    } else if (const auto *meanwhile = std::get_if<Meanwhile>(&step)) {
      meanwhile->action();
    } else {
      sleepUntilCancelled();
      return std::unexpected(StreamError::cancelled);
    }
  }
  return timeOut(deadline);
}

ScriptedStream::Outcome ScriptedStream::send(std::span<const std::byte> bytes, Uptime deadline) {
  if (const auto entered = enter(deadline); !entered)
    return std::unexpected(entered.error());
  if (readsLeft_-- <= 0)
    return timeOut(deadline);
  if (const auto passed = pass(readDelay_, deadline); !passed)
    return std::unexpected(passed.error());
  const auto taken = bytes.first(std::min(bytes.size(), mostTaken_));
  sent_.append(reinterpret_cast<const char *>(taken.data()), taken.size());
  return taken.size();
}

void ScriptedStream::cancel() {
  const Locked locked(lock_);
  cancelled_ = true;
  changed_.notify_all();
}

void ScriptedStream::sleepUntilCancelled() {
  Locked locked(lock_);
  waiting_ = true;
  changed_.notify_all();
  while (!cancelled_)
    locked.wait(changed_);
}

void ScriptedStream::awaitWaiter() {
  Locked locked(lock_);
  while (!waiting_)
    locked.wait(changed_);
}

std::size_t ScriptedStream::unread() const {
  std::size_t bytes = 0;
  for (const auto &step : script_)
    if (const auto *piece = std::get_if<Piece>(&step))
      bytes += piece->bytes.size();
  return bytes;
}

} // namespace fennick::test

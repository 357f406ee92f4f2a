#pragma once

#include "FennickCore/Platform/Network/ByteStream.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "tests/Support/FakeClock.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <variant>

namespace fennick::test {

// A peer that follows a script: `stream.sends("GET / ").pauses(Seconds(3)).sends("HTTP/1.1\r\n\r\n")`. A
// `receive` never returns bytes of two `sends`. After the script the peer is silent until the deadline. Write
// the script before using the stream.
class ScriptedStream final : public ByteStream {
public:
  explicit ScriptedStream(FakeClock &clock) : clock_(clock) {}

  ScriptedStream &sends(std::string_view bytes);
  ScriptedStream &pauses(Seconds length);                  // times out if the deadline comes first
  ScriptedStream &meanwhile(std::function<void()> action); // runs on the caller's thread
  ScriptedStream &waitsForCancel();                        // sleeps until another thread cancels

  // How the peer reads: at most so many bytes per `send`, each after a delay; nothing after `sends` calls.
  ScriptedStream &takesAtMost(std::size_t bytes);
  ScriptedStream &readsAfter(Seconds length);
  ScriptedStream &stopsReadingAfter(int sends);
  // Breaks the connection at the nth call of `receive` or `send`, counted together from 1.
  ScriptedStream &breaksAtCall(int nth);

  std::expected<std::size_t, StreamError> receive(std::span<std::byte> into, Uptime deadline) override;
  std::expected<std::size_t, StreamError> send(std::span<const std::byte> bytes, Uptime deadline) override;
  void finishOutput() override { outputFinished_ = true; }
  void cancel() override;

  [[nodiscard]] const std::string &sent() const { return sent_; } // everything that was taken
  [[nodiscard]] bool outputFinished() const { return outputFinished_; }
  [[nodiscard]] int calls() const { return calls_; }
  [[nodiscard]] std::size_t unread() const; // bytes of the script that were never received
  // Returns once a thread waits in `waitsForCancel`.
  void awaitWaiter();

private:
  struct Piece {
    std::string bytes;
  };
  struct Pause {
    Seconds length;
  };
  struct Meanwhile {
    std::function<void()> action;
  };
  struct WaitForCancel {};
  using Step = std::variant<Piece, Pause, Meanwhile, WaitForCancel>;
  using Outcome = std::expected<std::size_t, StreamError>;

  // Returns the error of the current call, if any.
  std::expected<void, StreamError> enter(Uptime deadline);
  std::expected<void, StreamError> pass(Seconds length, Uptime deadline);
  Outcome timeOut(Uptime deadline);
  Outcome take(Piece &piece, std::span<std::byte> into);
  void sleepUntilCancelled();

  FakeClock &clock_;
  std::deque<Step> script_;
  std::size_t mostTaken_ = std::numeric_limits<std::size_t>::max();
  Seconds readDelay_{};
  int readsLeft_ = std::numeric_limits<int>::max();
  int brokenAt_ = std::numeric_limits<int>::max();
  int calls_ = 0;
  std::string sent_;
  bool outputFinished_ = false;

  Mutex lock_;
  std::condition_variable changed_;
  bool cancelled_ GUARDED_BY(lock_) = false;
  bool waiting_ GUARDED_BY(lock_) = false;
};

} // namespace fennick::test

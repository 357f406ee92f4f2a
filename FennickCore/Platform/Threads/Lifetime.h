#pragma once

#include <memory>
#include <utility>

namespace fennick {

// Makes the callbacks of an object harmless once the object is gone or no longer waits for them. Objects that
// work with a MainQueue hold one as a member:
//
//   mainQueue_.post(lifetime_.guard([this] { refresh(); }));
//
// A guarded callback runs on the thread on which the owner is destroyed and `cancel` is called, so it either
// runs completely or not at all. Where only the latest of several requests counts, call `cancel` before each.
class Lifetime {
public:
  // Tells work on other threads whether its result is still wanted. Any thread.
  class Token {
  public:
    [[nodiscard]] bool isCancelled() const { return alive_.expired(); }

    // Returns a callback that calls `function` unless the token is cancelled by then.
    template <typename Function>
    [[nodiscard]] auto guard(Function function) const {
      return [alive = alive_, function = std::move(function)](auto &&...arguments) {
        if (!alive.expired())
          function(std::forward<decltype(arguments)>(arguments)...);
      };
    }

  private:
    friend class Lifetime;
    explicit Token(std::weak_ptr<const bool> alive) : alive_(std::move(alive)) {}
    std::weak_ptr<const bool> alive_;
  };

  Lifetime() = default;
  Lifetime(const Lifetime &) = delete;
  Lifetime &operator=(const Lifetime &) = delete;

  // Both may be called on any thread while the owner exists, as long as nothing calls `cancel` meanwhile.
  [[nodiscard]] Token token() const { return Token(alive_); }
  template <typename Function>
  [[nodiscard]] auto guard(Function function) const {
    return token().guard(std::move(function));
  }

  // Every callback guarded so far does nothing from now on, and every token so far is cancelled.
  void cancel() { alive_ = std::make_shared<const bool>(true); }

private:
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

} // namespace fennick

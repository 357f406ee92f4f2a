#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace fennick {

// Keeps an observer subscribed while it exists. Movable. May outlive the observed object.
class Subscription {
public:
  Subscription() = default;
  explicit Subscription(std::shared_ptr<void> observer) : observer_(std::move(observer)) {}

private:
  std::shared_ptr<void> observer_;
};

// A list of functions that are called with every new value, in the order in which they subscribed. An
// observer may subscribe, end any subscription and publish again while it is called.
template <typename T>
class ObserverList {
public:
  using Observer = std::function<void(const T &)>;

  [[nodiscard]] Subscription add(Observer observer) {
    auto kept = std::make_shared<Observer>(std::move(observer));
    std::erase_if(observers_, [](const auto &entry) { return entry.expired(); });
    observers_.push_back(kept);
    return Subscription(std::move(kept));
  }

  // Calls each observer with the value that `current` has at that moment: if an earlier observer changed it,
  // later ones do not receive the outdated value.
  void publish(const T &current) const {
    const auto observers = observers_;
    for (const auto &entry : observers)
      if (const auto observer = entry.lock())
        (*observer)(T(current));
  }

private:
  std::vector<std::weak_ptr<Observer>> observers_;
};

} // namespace fennick

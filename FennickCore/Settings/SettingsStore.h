#pragma once

#include "FennickCore/Settings/AppSettings.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fennick {

class Preferences;

// Keeps an observer subscribed for as long as it lives. Movable; may outlive what it observes.
class Subscription {
public:
  Subscription() = default;
  explicit Subscription(std::shared_ptr<void> observer) : observer_(std::move(observer)) {}

private:
  std::shared_ptr<void> observer_;
};

// Functions that are told of every new value, in the order in which they subscribed. An observer may
// subscribe, unsubscribe anyone and publish again while it is called.
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

  // Each observer gets the value that `current` has by then: when an earlier observer changed it again, the
  // later ones never see the older value last.
  void publish(const T &current) const {
    const auto observers = observers_;
    for (const auto &entry : observers)
      if (const auto observer = entry.lock())
        (*observer)(T(current));
  }

private:
  std::vector<std::weak_ptr<Observer>> observers_;
};

// The user's settings and the access key, kept in the preferences: "settings.v1" holds the record as JSON
// text, "accessKey" the key. Every change is written through at once. One for the process; main thread.
class SettingsStore {
public:
  // Reads both. Settings that are missing or cannot be read are the initial ones, and what is stored stays
  // until the next change; a key that is missing or empty is made and stored. `defaults` outlives the store.
  explicit SettingsStore(Preferences &defaults);

  [[nodiscard]] const AppSettings &settings() const { return settings_; }
  // Tells the observers, then stores. A record that cannot be encoded is not stored; one that the disk
  // refuses holds for this run (the preferences log it).
  void setSettings(AppSettings settings);
  // The same for a change in place: `store.update([](AppSettings &s) { s.galleryEnabled = true; })`.
  void update(const std::function<void(AppSettings &)> &change);

  [[nodiscard]] const std::string &accessKey() const { return accessKey_; }
  // Makes a new key, tells the observers, then stores it.
  void resetAccessKey();

  // `observer` is called within each later change, before it is stored; not for the present value.
  [[nodiscard]] Subscription observeSettings(std::function<void(const AppSettings &)> observer);
  [[nodiscard]] Subscription observeAccessKey(std::function<void(const std::string &)> observer);

private:
  void save();

  Preferences &defaults_;
  AppSettings settings_;
  std::string accessKey_;
  ObserverList<AppSettings> settingsObservers_;
  ObserverList<std::string> accessKeyObservers_;
};

} // namespace fennick

#pragma once

#include "FennickCore/Platform/Observers.h"
#include "FennickCore/Settings/AppSettings.h"

#include <functional>
#include <string>

namespace fennick {

class Preferences;

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

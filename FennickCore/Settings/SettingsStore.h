#pragma once

#include "FennickCore/Settings/AppSettings.h"
#include "FennickCore/Support/Observers.h"

#include <functional>
#include <string>
#include <string_view>
#include <system_error>

namespace fennick {

class Preferences;

// The user's settings and the access key, kept in the preferences: "settings.v1" holds the record as JSON,
// "accessKey" the key. Every change is stored at once. Overrides for this run are part of `settings` but not
// stored. One object per process; main thread.
class SettingsStore {
public:
  // Reads both. Missing or unreadable settings have their initial values, and the stored text is kept until
  // the next change; a missing or empty key is created and stored. `defaults` outlives the store.
  explicit SettingsStore(Preferences &defaults);

  // The settings of this run.
  [[nodiscard]] const AppSettings &settings() const { return settings_; }
  // The settings of the next run.
  [[nodiscard]] const AppSettings &stored() const { return stored_; }
  // Notifies the observers, then stores the fields that differ from the current record. A record that cannot
  // be encoded is not stored; one that the disk refuses applies to this run (the preferences log it).
  void setSettings(AppSettings settings);
  // Changes settings in place: `store.update([](AppSettings &s) { s.galleryEnabled = true; })`. `change` is
  // called for this run's record and for the stored one, so that setting a field to its overridden value
  // stores that value too.
  void update(const std::function<void(AppSettings &)> &change);
  // Changes the settings of this run and notifies the observers. The changed fields are stored only when one
  // of the functions above changes that field later.
  void overrideForRun(const std::function<void(AppSettings &)> &change);

  [[nodiscard]] const std::string &accessKey() const { return accessKey_; }
  // Creates a new key, notifies the observers, then stores it.
  void resetAccessKey();

  // `observer` is called for each later change before it is stored, not for the current value.
  [[nodiscard]] Subscription observeSettings(std::function<void(const AppSettings &)> observer);
  [[nodiscard]] Subscription observeAccessKey(std::function<void(const std::string &)> observer);
  // `observer` is called after each attempt to store settings or key, after the observers of the change.
  // Without an error everything is stored, including what was refused before.
  [[nodiscard]] Subscription observeSaves(std::function<void(const std::error_code &)> observer);
  // The result of the latest attempt to store, including that of a new installation's key.
  [[nodiscard]] const std::error_code &lastSave() const { return lastSave_; }

private:
  void adopt(AppSettings settings, AppSettings stored);
  void save();
  void saveText(std::string_view key, std::string_view text);
  void told(const std::error_code &result);

  Preferences &defaults_;
  AppSettings stored_;   // without what is overridden
  AppSettings settings_; // of this run
  std::string accessKey_;
  ObserverList<AppSettings> settingsObservers_;
  ObserverList<std::string> accessKeyObservers_;
  ObserverList<std::error_code> saveObservers_;
  std::error_code lastSave_;
};

} // namespace fennick

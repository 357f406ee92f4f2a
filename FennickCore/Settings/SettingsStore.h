#pragma once

#include "FennickCore/Settings/AppSettings.h"
#include "FennickCore/Support/Observers.h"

#include <functional>
#include <string>
#include <string_view>
#include <system_error>

namespace fennick {

class Preferences;

// The user's settings and the access key, kept in the preferences: "settings.v1" holds the record as JSON
// text, "accessKey" the key. Every change is written through at once. What is overridden for this run holds
// in `settings` and is not stored. One for the process; main thread.
class SettingsStore {
public:
  // Reads both. Settings that are missing or cannot be read are the initial ones, and what is stored stays
  // until the next change; a key that is missing or empty is made and stored. `defaults` outlives the store.
  explicit SettingsStore(Preferences &defaults);

  // What holds for this run.
  [[nodiscard]] const AppSettings &settings() const { return settings_; }
  // What holds from the next run on.
  [[nodiscard]] const AppSettings &stored() const { return stored_; }
  // Tells the observers, then stores the fields that differ from the present record. A record that cannot be
  // encoded is not stored; one that the disk refuses holds for this run (the preferences log it).
  void setSettings(AppSettings settings);
  // The same for a change in place: `store.update([](AppSettings &s) { s.galleryEnabled = true; })`. `change`
  // is called for this run's record and for the stored one, so that setting a field to the value it was
  // overridden with stores that value too.
  void update(const std::function<void(AppSettings &)> &change);
  // Changes the settings of this run and tells the observers. The fields that this changes reach the disk
  // only once that very field is changed by one of the functions above.
  void overrideForRun(const std::function<void(AppSettings &)> &change);

  [[nodiscard]] const std::string &accessKey() const { return accessKey_; }
  // Makes a new key, tells the observers, then stores it.
  void resetAccessKey();

  // `observer` is called within each later change, before it is stored; not for the present value.
  [[nodiscard]] Subscription observeSettings(std::function<void(const AppSettings &)> observer);
  [[nodiscard]] Subscription observeAccessKey(std::function<void(const std::string &)> observer);
  // `observer` is called after each later change of settings or key was stored, or was refused by the disk,
  // and after the observers of the change. No error: it is stored, and all that was refused before with it.
  [[nodiscard]] Subscription observeSaves(std::function<void(const std::error_code &)> observer);
  // How the latest of them, that of a key made for a new installation included, went.
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

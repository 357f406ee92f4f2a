#include "FennickCore/Settings/SettingsStore.h"

#include "FennickCore/Platform/Files/Preferences.h"
#include "FennickCore/Settings/AccessKey.h"
#include "FennickCore/Settings/SettingsChanges.h"
#include "FennickCore/Settings/SettingsCodec.h"

#include <tuple>

namespace fennick {

namespace {

constexpr std::string_view kSettingsKey = "settings.v1";
constexpr std::string_view kAccessKeyKey = "accessKey";

AppSettings load(const Preferences &defaults) {
  const auto stored = defaults.text(kSettingsKey);
  return stored ? decodeAppSettings(*stored).value_or(AppSettings{}) : AppSettings{};
}

} // namespace

SettingsStore::SettingsStore(Preferences &defaults)
    : defaults_(defaults), stored_(load(defaults)), settings_(stored_),
      accessKey_(defaults.text(kAccessKeyKey).value_or(std::string())) {
  if (!accessKey_.empty())
    return;
  accessKey_ = AccessKey::generate(AccessKey::kLength);
  saveText(kAccessKeyKey, accessKey_);
}

void SettingsStore::setSettings(AppSettings settings) {
  AppSettings stored = stored_;
  carryChanges(settings_, settings, stored);
  adopt(std::move(settings), std::move(stored));
}

void SettingsStore::update(const std::function<void(AppSettings &)> &change) {
  AppSettings settings = settings_;
  change(settings);
  AppSettings stored = stored_;
  change(stored);
  carryChanges(settings_, settings,
               stored); // the stored value of a field that was switched becomes the value that the user saw
  adopt(std::move(settings), std::move(stored));
}

void SettingsStore::overrideForRun(const std::function<void(AppSettings &)> &change) {
  AppSettings settings = settings_;
  change(settings);
  settings_ = std::move(settings);
  settingsObservers_.publish(settings_);
}

void SettingsStore::resetAccessKey() {
  accessKey_ = AccessKey::generate(AccessKey::kLength);
  accessKeyObservers_.publish(accessKey_);
  saveText(kAccessKeyKey, accessKey_);
}

Subscription SettingsStore::observeSettings(std::function<void(const AppSettings &)> observer) {
  return settingsObservers_.add(std::move(observer));
}

Subscription SettingsStore::observeAccessKey(std::function<void(const std::string &)> observer) {
  return accessKeyObservers_.add(std::move(observer));
}

Subscription SettingsStore::observeSaves(std::function<void(const std::error_code &)> observer) {
  return saveObservers_.add(std::move(observer));
}

void SettingsStore::adopt(AppSettings settings, AppSettings stored) {
  stored_ = std::move(stored);
  settings_ = std::move(settings);
  settingsObservers_.publish(settings_);
  save();
}

void SettingsStore::save() {
  if (const auto text = encode(stored_))
    saveText(kSettingsKey, *text);
  else
    told(std::make_error_code(std::errc::invalid_argument));
}

void SettingsStore::saveText(std::string_view key, std::string_view text) {
  const auto saved = defaults_.setText(key, text);
  told(saved ? std::error_code() : saved.error());
}

void SettingsStore::told(const std::error_code &result) {
  lastSave_ = result;
  saveObservers_.publish(result);
}

} // namespace fennick

#include "FennickCore/Settings/SettingsStore.h"

#include "FennickCore/Platform/Preferences.h"
#include "FennickCore/Settings/AccessKey.h"
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
    : defaults_(defaults), settings_(load(defaults)),
      accessKey_(defaults.text(kAccessKeyKey).value_or(std::string())) {
  if (!accessKey_.empty())
    return;
  accessKey_ = AccessKey::generate(AccessKey::kLength);
  std::ignore = defaults_.setText(kAccessKeyKey, accessKey_);
}

void SettingsStore::setSettings(AppSettings settings) {
  settings_ = std::move(settings);
  settingsObservers_.publish(settings_);
  save();
}

void SettingsStore::update(const std::function<void(AppSettings &)> &change) {
  AppSettings changed = settings_;
  change(changed);
  setSettings(std::move(changed));
}

void SettingsStore::resetAccessKey() {
  accessKey_ = AccessKey::generate(AccessKey::kLength);
  accessKeyObservers_.publish(accessKey_);
  std::ignore = defaults_.setText(kAccessKeyKey, accessKey_);
}

Subscription SettingsStore::observeSettings(std::function<void(const AppSettings &)> observer) {
  return settingsObservers_.add(std::move(observer));
}

Subscription SettingsStore::observeAccessKey(std::function<void(const std::string &)> observer) {
  return accessKeyObservers_.add(std::move(observer));
}

void SettingsStore::save() {
  if (const auto text = encode(settings_))
    std::ignore = defaults_.setText(kSettingsKey, *text);
}

} // namespace fennick

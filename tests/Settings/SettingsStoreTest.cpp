#include "FennickCore/Settings/SettingsStore.h"

#include "FennickCore/Platform/Files/Preferences.h"
#include "FennickCore/Settings/AccessKey.h"
#include "FennickCore/Settings/SettingsCodec.h"
#include "tests/Settings/FullSettings.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

namespace fennick {
namespace {

class MemoryPreferences final : public Preferences {
public:
  [[nodiscard]] std::optional<std::string> text(std::string_view key) const override {
    const auto found = texts.find(key);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
  }
  [[nodiscard]] bool flag(std::string_view) const override { return false; }
  std::expected<void, std::error_code> setText(std::string_view key, std::string_view value) override {
    if (refusal)
      return std::unexpected(*refusal);
    texts.insert_or_assign(std::string(key), std::string(value));
    return {};
  }
  std::expected<void, std::error_code> setFlag(std::string_view, bool) override { return {}; }

  std::map<std::string, std::string, std::less<>> texts;
  std::optional<std::error_code> refusal;
};

class SettingsStoreTest : public ::testing::Test {
protected:
  [[nodiscard]] AppSettings storedSettings() const {
    return decodeAppSettings(preferences.text("settings.v1").value()).value();
  }
  static auto portTo(std::uint16_t port) {
    return [port](AppSettings &settings) { settings.preferredPort = port; };
  }

  MemoryPreferences preferences;
};

TEST_F(SettingsStoreTest, KeepsChangesForTheNextRun) {
  std::string key;
  {
    SettingsStore store(preferences);
    store.setSettings(test::fullSettings());
    key = store.accessKey();
  }
  const SettingsStore next(preferences);
  EXPECT_EQ(next.settings(), test::fullSettings());
  EXPECT_EQ(next.accessKey(), key);
}

TEST_F(SettingsStoreTest, KeepsUnreadableSettingsUntilTheNextChange) {
  const std::string damaged = R"({"preferredPort":9000,"maxUploadBytes":"big"})";
  preferences.texts["settings.v1"] = damaged;
  SettingsStore store(preferences);
  EXPECT_EQ(store.settings(), AppSettings{});
  EXPECT_EQ(preferences.text("settings.v1"), damaged);
  store.update(portTo(9001));
  EXPECT_EQ(storedSettings().preferredPort, 9001);
}

TEST_F(SettingsStoreTest, CreatesAMissingKey) {
  preferences.texts["accessKey"] = "";
  const SettingsStore store(preferences);
  EXPECT_EQ(store.accessKey().size(), 10U);
  EXPECT_EQ(store.accessKey().find_first_not_of(AccessKey::kAlphabet), std::string::npos);
  EXPECT_EQ(preferences.text("accessKey"), store.accessKey());
}

TEST_F(SettingsStoreTest, NotifiesObserversBeforeStoring) {
  SettingsStore store(preferences);
  const std::string firstKey = store.accessKey();
  std::optional<AppSettings> heard;
  std::string heardKey;
  const auto settings = store.observeSettings([&](const AppSettings &value) {
    heard = value;
    EXPECT_EQ(store.settings(), value);
    EXPECT_FALSE(preferences.text("settings.v1"));
  });
  const auto key = store.observeAccessKey([&](const std::string &value) {
    heardKey = value;
    EXPECT_EQ(preferences.text("accessKey"), firstKey);
  });

  store.update(portTo(9000));
  store.resetAccessKey();
  EXPECT_EQ(heard, storedSettings());
  EXPECT_NE(heardKey, firstKey);
  EXPECT_EQ(heardKey, preferences.text("accessKey"));
}

TEST_F(SettingsStoreTest, StoresAnOverriddenFieldOnlyWhenItChanges) {
  SettingsStore store(preferences);
  std::optional<AppSettings> heard;
  const auto settings = store.observeSettings([&](const AppSettings &value) { heard = value; });
  store.overrideForRun([](AppSettings &s) { s = test::fullSettings(); });
  EXPECT_EQ(heard, test::fullSettings());
  EXPECT_FALSE(preferences.text("settings.v1"));

  AppSettings stored;
  AppSettings inUse = test::fullSettings();
  const auto expectBoth = [&] {
    EXPECT_EQ(store.settings(), inUse);
    EXPECT_EQ(storedSettings(), stored);
    EXPECT_EQ(SettingsStore(preferences).settings(), stored);
  };
  store.update([](AppSettings &s) { s.imaging.quality = 0.6; });
  inUse.imaging.quality = stored.imaging.quality = 0.6;
  expectBoth();
  store.update([](AppSettings &s) { s.galleryEnabled = !s.galleryEnabled; }); // true was seen, false is meant
  inUse.galleryEnabled = stored.galleryEnabled = false;
  expectBoth();
  store.update(portTo(inUse.preferredPort));
  stored.preferredPort = inUse.preferredPort;
  expectBoth();
  inUse.workflow.notify = false; // stored is false already
  inUse.sessionSubfolder = stored.sessionSubfolder = "其他";
  inUse.hotKeyPreset = std::nullopt;
  store.setSettings(inUse);
  expectBoth();
}

TEST_F(SettingsStoreTest, ReportsAFailedStoreAfterTheObservers) {
  SettingsStore store(preferences);
  std::string told;
  const auto settings = store.observeSettings([&](const AppSettings &) { told += "settings "; });
  const auto key = store.observeAccessKey([&](const std::string &) { told += "key "; });
  const auto saves = store.observeSaves(
      [&](const std::error_code &why) { told += why ? why.message() + "; " : std::string("stored; "); });
  preferences.refusal = std::make_error_code(std::errc::no_space_on_device);
  store.update(portTo(9000));
  store.resetAccessKey();
  store.overrideForRun(portTo(9001));
  preferences.refusal.reset();
  store.update([](AppSettings &s) { s.sessionSubfolder = "\xFF"; });
  EXPECT_EQ(told, "settings No space left on device; key No space left on device; settings "
                  "settings Invalid argument; ");
  EXPECT_EQ(store.settings().preferredPort, 9001);
  told.clear();
  store.update([](AppSettings &s) { s.sessionSubfolder = std::nullopt; });
  EXPECT_EQ(told, "settings stored; ");
  EXPECT_EQ(storedSettings().preferredPort, 9000);
}

} // namespace
} // namespace fennick

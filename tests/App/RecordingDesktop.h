#pragma once

#include "Quarrow/App/Desktop.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace quarrow::test {

// Records what is asked of the desktop as text.
class RecordingDesktop final : public Desktop {
public:
  void makeTrayItem() override { asked.emplace_back("tray item"); }
  void flashTrayItem() override { asked.emplace_back("flash"); }
  void showPanel() override { asked.emplace_back("panel"); }
  void closePanel() override { asked.emplace_back("close panel"); }
  void show(Window window) override {
    constexpr const char *kNames[] = {"main", "settings", "onboarding", "help"};
    asked.emplace_back(kNames[static_cast<int>(window)]);
  }
  [[nodiscard]] bool isOpen(Window) const override { return false; }
  void copyToClipboard(const Paths &files) override { asked.push_back("copy " + namesOf(files)); }
  void openWith(const std::filesystem::path &application, const Paths &files, Failed failed) override {
    asked.push_back(fmt::format("open {} with {}", namesOf(files), application.filename().string()));
    failed("no such program");
  }
  void open(const Paths &files, Failed) override { asked.push_back("open " + namesOf(files)); }
  void showInFolder(const Paths &files) override { asked.push_back("show " + namesOf(files)); }
  void playSound() override { asked.emplace_back("sound"); }
  void notify(const std::string &title, const std::string &body, const std::filesystem::path &) override {
    asked.push_back(fmt::format("notify {}: {}", title, body));
  }
  bool registerHotKey(std::optional<std::int64_t> presetID, HotKeyActions actions) override {
    asked.push_back(presetID ? fmt::format("hot key {}", *presetID) : "no hot key");
    hotKey = std::move(actions);
    return grantsHotKey || !presetID;
  }
  [[nodiscard]] bool launchedAsLoginItem() const override { return isLoginItem; }

  std::vector<std::string> take() { return std::exchange(asked, {}); }

  static std::string namesOf(const Paths &files) {
    std::string names;
    for (const auto &file : files)
      names += (names.empty() ? "" : " ") + file.filename().string();
    return names;
  }

  std::vector<std::string> asked;
  HotKeyActions hotKey;
  bool grantsHotKey = true;
  bool isLoginItem = false;
};

} // namespace quarrow::test

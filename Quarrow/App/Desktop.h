#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quarrow {

// What the coordinator requires of the desktop. The program with windows implements it with the real
// services, the terminal program for a terminal, and tests record the calls. Main thread.
class Desktop {
public:
  enum class Window { main, settings, onboarding, help };

  virtual ~Desktop() = default;

  // Shows the tray icon. Called once, before anything else here.
  virtual void makeTrayItem() = 0;
  // Shows for a moment that a photo has arrived.
  virtual void flashTrayItem() = 0;
  virtual void showPanel() = 0;
  virtual void closePanel() = 0;
  // Opens the window, or brings it to the front, and gives it focus.
  virtual void show(Window window) = 0;
  [[nodiscard]] virtual bool isOpen(Window window) const = 0;

  using Paths = std::vector<std::filesystem::path>;
  // Receives a message why something could not be done, on the main thread, possibly later.
  using Failed = std::function<void(const std::string &)>;

  // Copies the files to the clipboard; for a single picture also the picture itself.
  virtual void copyToClipboard(const Paths &files) = 0;
  void copyToClipboard(const std::filesystem::path &file) { copyToClipboard(Paths{file}); }
  // Opens the files with the application of the desktop entry `application`.
  virtual void openWith(const std::filesystem::path &application, const Paths &files, Failed failed) = 0;
  void openWith(const std::filesystem::path &application, const std::filesystem::path &file, Failed failed) {
    openWith(application, Paths{file}, std::move(failed));
  }
  // Opens each file with the default application for its kind.
  virtual void open(const Paths &files, Failed failed) = 0;
  // Selects the files in the file manager, or opens their folder if that is not supported.
  virtual void showInFolder(const Paths &files) = 0;
  // Plays the short sound of an arrival.
  virtual void playSound() = 0;
  // Shows a notification about the file. If the desktop refuses it, it is dropped.
  virtual void notify(const std::string &title, const std::string &body,
                      const std::filesystem::path &file) = 0;

  struct HotKeyActions {
    std::function<void()> pressed{};
    std::function<void()> refused{}; // called if the desktop answers late or withdraws the shortcut
  };
  // Replaces the global shortcut by the preset with this number, or removes it; the actions are called on the
  // main thread. Returns false if the shortcut is not available; then there is none.
  [[nodiscard]] virtual bool registerHotKey(std::optional<std::int64_t> presetID, HotKeyActions actions) = 0;

  // Returns whether the session started the program at login: it then stays in the tray and opens no window.
  [[nodiscard]] virtual bool launchedAsLoginItem() const = 0;
};

} // namespace quarrow

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quarrow {

// What the coordinator asks of the desktop that it runs on: the program with windows answers with the real
// services, the terminal program with what a terminal has, tests write down what was asked. Main thread.
class Desktop {
public:
  enum class Window { main, settings, onboarding, help };

  virtual ~Desktop() = default;

  // Puts the icon into the tray. Once, before anything else here is called.
  virtual void makeTrayItem() = 0;
  // Shows for a moment that a photo has arrived.
  virtual void flashTrayItem() = 0;
  virtual void showPanel() = 0;
  virtual void closePanel() = 0;
  // Opens the window, or brings it to the front; it gets the keyboard.
  virtual void show(Window window) = 0;
  [[nodiscard]] virtual bool isOpen(Window window) const = 0;

  using Paths = std::vector<std::filesystem::path>;
  // Is told in words why something could not be done; on the main thread, perhaps later.
  using Failed = std::function<void(const std::string &)>;

  // Puts the files on the clipboard, and of a single one the picture itself where other programs take one.
  virtual void copyToClipboard(const Paths &files) = 0;
  void copyToClipboard(const std::filesystem::path &file) { copyToClipboard(Paths{file}); }
  // Opens the files with the application that its desktop entry `application` describes.
  virtual void openWith(const std::filesystem::path &application, const Paths &files, Failed failed) = 0;
  void openWith(const std::filesystem::path &application, const std::filesystem::path &file, Failed failed) {
    openWith(application, Paths{file}, std::move(failed));
  }
  // Opens each file with the application that people use for files of its kind.
  virtual void open(const Paths &files, Failed failed) = 0;
  // Selects the files in the file manager, or opens their folder where it cannot do that.
  virtual void showInFolder(const Paths &files) = 0;
  // The short sound of an arrival.
  virtual void playSound() = 0;
  // Shows a notification about the file now; one that the desktop refuses is dropped.
  virtual void notify(const std::string &title, const std::string &body,
                      const std::filesystem::path &file) = 0;

  struct HotKeyActions {
    std::function<void()> pressed{};
    std::function<void()> refused{}; // by a desktop that answers late, or takes the shortcut away again
  };
  // Replaces the global shortcut by the preset with this number, or by none; the actions are called on the
  // main thread. False when the shortcut is not to be had, and there is none then.
  [[nodiscard]] virtual bool registerHotKey(std::optional<std::int64_t> presetID, HotKeyActions actions) = 0;

  // Whether the session started the program at login: it waits in the tray then and opens no window.
  [[nodiscard]] virtual bool launchedAsLoginItem() const = 0;
};

} // namespace quarrow

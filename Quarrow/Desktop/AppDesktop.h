#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "Quarrow/App/Desktop.h"
#include "Quarrow/Desktop/Chime.h"
#include "Quarrow/Desktop/ChimeOutput.h"
#include "Quarrow/Desktop/Clipboard.h"
#include "Quarrow/Desktop/HotKeyManager.h"
#include "Quarrow/Desktop/Notifier.h"
#include "Quarrow/Desktop/PanelWindow.h"
#include "Quarrow/Desktop/ShowFile.h"
#include "Quarrow/Desktop/StatusItemController.h"
#include "Quarrow/Desktop/TrayItem.h"
#include "Quarrow/Desktop/ViewMaker.h"
#include "Quarrow/Desktop/WindowKeeper.h"

#include <QDBusConnection>
#include <QObject>

namespace quarrow {

// The real desktop: tray icon, panel and windows, clipboard, sound, notifications and the shortcut. Main
// thread, while there is an application object.
class AppDesktop final : public QObject, public Desktop {
  Q_OBJECT

public:
  // The references outlive the desktop.
  struct Services {
    fennick::MainQueue &mainQueue;
    const fennick::Clock &clock;
    fennick::PictureDecoder &decoder;
    QDBusConnection bus; // of the session
    ViewMaker makeView;
    bool launchedAsLoginItem = false;
  };
  explicit AppDesktop(const Services &services);
  ~AppDesktop() override;
  AppDesktop(const AppDesktop &) = delete;
  AppDesktop &operator=(const AppDesktop &) = delete;

  [[nodiscard]] bool hasTray() const { return tray_.isShown(); }
  [[nodiscard]] PanelWindow &panel() { return panel_; }
  [[nodiscard]] WindowKeeper &windows() { return windows_; }
  // Adapts to changed colours of the session.
  void recolour() { tray_.tint(); }
  // Closes all windows.
  void closeAll();

  void makeTrayItem() override;
  void flashTrayItem() override { statusItem_.flash(); }
  void showPanel() override { statusItem_.show(); }
  void closePanel() override { statusItem_.close(); }
  void show(Window window) override;
  [[nodiscard]] bool isOpen(Window window) const override { return windows_.window(window) != nullptr; }
  void copyToClipboard(const Paths &files) override { clipboard_.copy(files); }
  void openWith(const std::filesystem::path &application, const Paths &files, Failed failed) override;
  void open(const Paths &files, Failed failed) override;
  void showInFolder(const Paths &files) override { quarrow::showInFolder(files, bus_, *this); }
  void playSound() override { chime_.play(); }
  void notify(const std::string &title, const std::string &body, const std::filesystem::path &file) override {
    notifier_.post(title, body, file);
  }
  [[nodiscard]] bool registerHotKey(std::optional<std::int64_t> presetID, HotKeyActions actions) override;
  [[nodiscard]] bool launchedAsLoginItem() const override { return launchedAsLoginItem_; }

signals:
  // The user chose the main window in the tray's menu.
  void mainWindowAskedFor();

private:
  [[nodiscard]] TrayItem::Actions trayActions();

  const bool launchedAsLoginItem_;
  const QDBusConnection bus_;
  TrayItem tray_;
  PanelWindow panel_;
  StatusItemController statusItem_;
  WindowKeeper windows_;
  HotKeyManager hotKey_;
  Clipboard clipboard_;
  ChimeOutput loudspeaker_;
  Chime chime_;
  Notifier notifier_;
};

} // namespace quarrow

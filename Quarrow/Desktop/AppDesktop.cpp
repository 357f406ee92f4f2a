#include "Quarrow/Desktop/AppDesktop.h"

#include "Quarrow/App/Applications.h"

#include <QCoreApplication>

#include <utility>

namespace quarrow {

AppDesktop::AppDesktop(const Services &services)
    : launchedAsLoginItem_(services.launchedAsLoginItem), bus_(services.bus),
      tray_(services.bus, trayActions()), panel_(services.makeView, [this] { return tray_.place(); }),
      statusItem_(tray_, panel_, services.mainQueue, services.clock), windows_(services.makeView),
      hotKey_(services.mainQueue, makeHotKeyBackend()), clipboard_(services.decoder, services.mainQueue),
      chime_(services.clock, loudspeaker_),
      notifier_(services.bus, services.decoder,
                {.open = openFile, .showInFolder = [this](const auto &file) { showInFolder({file}); }}) {
  connect(&panel_, &PanelWindow::left, this, [this] { statusItem_.panelLeft(); });
  connect(&tray_, &TrayItem::shownChanged, this, [this] { windows_.setAsksBeforeLast(!hasTray()); });
}

AppDesktop::~AppDesktop() = default;

TrayItem::Actions AppDesktop::trayActions() {
  return {.togglePanel = [this] { statusItem_.togglePopover(); },
          .showMainWindow = [this] { emit mainWindowAskedFor(); },
          .showSettings = [this] { show(Window::settings); },
          .showHelp = [this] { show(Window::help); },
          .quit = [] { QCoreApplication::quit(); }};
}

void AppDesktop::makeTrayItem() {
  windows_.setAsksBeforeLast(true);
  tray_.start();
}

void AppDesktop::show(Window window) {
  windows_.show(window);
  closePanel();
}

void AppDesktop::closeAll() {
  panel_.close();
  windows_.closeAll();
}

void AppDesktop::openWith(const std::filesystem::path &application, const Paths &files, Failed failed) {
  if (const auto opened = applications::openWith(application, files); !opened)
    failed(opened.error());
}

void AppDesktop::open(const Paths &files, Failed failed) {
  if (const auto opened = applications::openFiles(files); !opened)
    failed(opened.error());
}

bool AppDesktop::registerHotKey(std::optional<std::int64_t> presetID, HotKeyActions actions) {
  const auto *preset = presetID ? HotKeyManager::preset(*presetID) : nullptr;
  return hotKey_.replace(preset, std::move(actions.pressed), std::move(actions.refused));
}

} // namespace quarrow

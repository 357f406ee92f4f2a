#include "Quarrow/Desktop/Shell.h"

#include "Quarrow/App/Applications.h"
#include "Quarrow/Desktop/HotKeyManager.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QFileDialog>
#include <QGuiApplication>
#include <QVariantMap>
#include <QWindow>

#include <tuple>

namespace quarrow {

Shell::Shell(fennick::SettingsStore &settings, const ServerModel &server, AppCommands &commands,
             LoginItem &loginItem)
    : settings_(settings), server_(server), commands_(commands), loginItem_(loginItem),
      subscription_(settings.observeSettings([this](const auto &) { emit settingsChanged(); })) {}

Shell::~Shell() = default;

bool Shell::galleryEnabled() const { return settings_.settings().galleryEnabled; }

void Shell::setGalleryEnabled(bool enabled) {
  settings_.update([&](auto &settings) { settings.galleryEnabled = enabled; });
}

QString Shell::preferredInterface() const {
  return QString::fromStdString(settings_.settings().preferredInterface.value_or(""));
}

void Shell::setPreferredInterface(const QString &interface) {
  settings_.update([&](auto &settings) {
    settings.preferredInterface = interface.isEmpty() ? std::nullopt : std::optional(interface.toStdString());
  });
}

int Shell::hotKeyPreset() const { return static_cast<int>(settings_.settings().hotKeyPreset.value_or(-1)); }

void Shell::setHotKeyPreset(int preset) {
  settings_.update([&](auto &settings) {
    settings.hotKeyPreset = preset < 0 ? std::nullopt : std::optional<std::int64_t>(preset);
  });
}

QVariantList Shell::hotKeyPresets() {
  QVariantList presets;
  for (const auto &preset : HotKeyManager::presets())
    presets.append(
        QVariantMap{{"id", static_cast<int>(preset.id)}, {"title", QString::fromUtf8(preset.title)}});
  return presets;
}

int Shell::preferredPort() const { return settings_.settings().preferredPort; }

bool Shell::startsAtLogin() const { return loginItem_.isEnabled(); }

void Shell::setStartsAtLogin(bool starts) {
  if (const auto done = loginItem_.setEnabled(starts); !done)
    commands_.reportProblem(
        tr("无法设置登录时启动：%1").arg(QString::fromStdString(done.error())).toStdString());
  emit startsAtLoginChanged();
}

QString Shell::resetKeyWarning() { return ServerModel::resetKeyWarning(); }

void Shell::countReceived() {
  ++receivedCount_;
  emit receivedCountChanged();
}

void Shell::copyText(const QString &text) { QGuiApplication::clipboard()->setText(text); }

void Shell::openSaveFolder() {
  const auto folder = server_.saveFolder().value_or("");
  if (const auto opened = applications::openFolder(folder); !opened)
    commands_.reportProblem(opened.error());
}

void Shell::askForFolder(const QString &title, const QUrl &start, const QJSValue &chosen) {
  folderDialog_ = std::make_unique<QFileDialog>(nullptr, title, start.toLocalFile());
  folderDialog_->setFileMode(QFileDialog::Directory);
  folderDialog_->setOption(QFileDialog::ShowDirsOnly);
  folderDialog_->setWindowModality(Qt::WindowModal);
  std::ignore = folderDialog_->winId(); // creates the native window, which can then be placed above another
  folderDialog_->windowHandle()->setTransientParent(QGuiApplication::focusWindow());
  connect(folderDialog_.get(), &QFileDialog::fileSelected, this, [chosen](const QString &folder) {
    std::ignore = chosen.call({QUrl::fromLocalFile(folder).toString()});
  });
  folderDialog_->open();
}

void Shell::chooseSaveFolder(const QUrl &folder) {
  commands_.chooseSaveFolder(folder.toLocalFile().toStdString());
}
void Shell::showMainWindow() { commands_.handleArguments({}); }
void Shell::showSettings() { commands_.showSettingsAction(); }
void Shell::showHelp() { commands_.showHelpAction(); }
void Shell::finishOnboarding() { commands_.finishOnboarding(); }
void Shell::resetKey() { settings_.resetAccessKey(); }
void Shell::checkAgain() { commands_.runLocalNetworkCheck(); }
void Shell::dismissError() { commands_.dismissError(); }
void Shell::quit() { QCoreApplication::quit(); }

} // namespace quarrow

#pragma once

#include "FennickCore/Settings/SettingsStore.h"
#include "Quarrow/App/Commands.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/Desktop/LoginItem.h"

#include <QJSValue>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>

#include <memory>

class QFileDialog;

namespace quarrow {

// Commands of the windows and the settings that they show, for QML. Main thread.
class Shell : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool galleryEnabled READ galleryEnabled WRITE setGalleryEnabled NOTIFY settingsChanged)
  // The name of an interface; empty: automatic.
  Q_PROPERTY(
      QString preferredInterface READ preferredInterface WRITE setPreferredInterface NOTIFY settingsChanged)
  // The number of a preset; -1: none.
  Q_PROPERTY(int hotKeyPreset READ hotKeyPreset WRITE setHotKeyPreset NOTIFY settingsChanged)
  // Each with `id` and `title`.
  Q_PROPERTY(QVariantList hotKeyPresets READ hotKeyPresets CONSTANT)
  Q_PROPERTY(int preferredPort READ preferredPort NOTIFY settingsChanged)
  Q_PROPERTY(bool startsAtLogin READ startsAtLogin WRITE setStartsAtLogin NOTIFY startsAtLoginChanged)
  // Files received in this run.
  Q_PROPERTY(int receivedCount READ receivedCount NOTIFY receivedCountChanged)
  Q_PROPERTY(QString resetKeyWarning READ resetKeyWarning CONSTANT)

public:
  // All outlive the object.
  Shell(fennick::SettingsStore &settings, const ServerModel &server, AppCommands &commands,
        LoginItem &loginItem);
  ~Shell() override;
  Shell(const Shell &) = delete;
  Shell &operator=(const Shell &) = delete;

  [[nodiscard]] bool galleryEnabled() const;
  void setGalleryEnabled(bool enabled);
  [[nodiscard]] QString preferredInterface() const;
  void setPreferredInterface(const QString &interface);
  [[nodiscard]] int hotKeyPreset() const;
  void setHotKeyPreset(int preset);
  [[nodiscard]] static QVariantList hotKeyPresets();
  [[nodiscard]] int preferredPort() const;
  [[nodiscard]] bool startsAtLogin() const;
  void setStartsAtLogin(bool starts);
  [[nodiscard]] int receivedCount() const { return receivedCount_; }
  [[nodiscard]] static QString resetKeyWarning();

  // Counts a received file.
  void countReceived();

  Q_INVOKABLE void copyText(const QString &text);
  Q_INVOKABLE void openSaveFolder();
  // Asks the user for a folder, starting in `start`, above the window with focus. `chosen` is called with its
  // URL unless the user cancels.
  Q_INVOKABLE void askForFolder(const QString &title, const QUrl &start, const QJSValue &chosen);
  // Stores the folder as the save folder. An error becomes the model's.
  Q_INVOKABLE void chooseSaveFolder(const QUrl &folder);
  Q_INVOKABLE void showMainWindow();
  Q_INVOKABLE void showSettings();
  Q_INVOKABLE void showHelp();
  Q_INVOKABLE void finishOnboarding();
  Q_INVOKABLE void resetKey();
  Q_INVOKABLE void checkAgain();
  Q_INVOKABLE void dismissError();
  Q_INVOKABLE void quit();

signals:
  void settingsChanged();
  void startsAtLoginChanged();
  void receivedCountChanged();

private:
  fennick::SettingsStore &settings_;
  const ServerModel &server_;
  AppCommands &commands_;
  LoginItem &loginItem_;
  fennick::Subscription subscription_;
  std::unique_ptr<QFileDialog> folderDialog_; // created with the first question
  int receivedCount_ = 0;
};

} // namespace quarrow

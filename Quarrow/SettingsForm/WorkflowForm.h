#pragma once

#include "FennickCore/Platform/Threads/LatestTask.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/App/Applications.h"
#include "Quarrow/App/Desktop.h"
#include "Quarrow/SettingsForm/ApplicationList.h"

#include <QObject>
#include <QString>

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quarrow {

// The actions after a photo was received: every field of the options, the applications to choose from, and a
// trial of each action with the latest photo or a sample. Main thread; applications are searched on another
// thread.
class WorkflowForm : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool copyToClipboard READ copyToClipboard WRITE setCopyToClipboard NOTIFY changed)
  Q_PROPERTY(bool playSound READ playSound WRITE setPlaySound NOTIFY changed)
  Q_PROPERTY(bool notify READ notify WRITE setNotify NOTIFY changed)
  // The application that opens received photos: its name, empty for none, and its desktop entry.
  Q_PROPERTY(QString applicationName READ applicationName NOTIFY changed)
  Q_PROPERTY(QString applicationEntry READ applicationEntry NOTIFY changed)
  // Why it cannot be used; empty if it can.
  Q_PROPERTY(QString applicationError READ applicationError NOTIFY changed)
  Q_PROPERTY(quarrow::ApplicationList *applications READ applications CONSTANT)
  // Whether applications are being searched.
  Q_PROPERTY(bool searching READ isSearching NOTIFY searchingChanged)
  // The result of the last trial of each action, by its number; empty: none.
  Q_PROPERTY(QStringList outcomes READ outcomes NOTIFY outcomesChanged)
  // Whether the photo could not be opened in the last trial.
  Q_PROPERTY(bool openingFailed READ openingFailed NOTIFY outcomesChanged)

public:
  enum Action { Copy, Open, Sound, Note };
  Q_ENUM(Action)

  // All outlive the object. The sample picture that actions are tried with is made in `sampleFolder` when it
  // is needed.
  WorkflowForm(fennick::SettingsStore &settings, fennick::PhotoLibrary &library, Desktop &desktop,
               fennick::MainQueue &mainQueue, std::filesystem::path sampleFolder);

  [[nodiscard]] bool copyToClipboard() const { return now().copyToClipboard; }
  void setCopyToClipboard(bool wanted);
  [[nodiscard]] bool playSound() const { return now().playSound; }
  void setPlaySound(bool wanted);
  [[nodiscard]] bool notify() const { return now().notify; }
  void setNotify(bool wanted);
  [[nodiscard]] QString applicationName() const;
  [[nodiscard]] QString applicationEntry() const;
  [[nodiscard]] QString applicationError() const;

  [[nodiscard]] ApplicationList *applications() { return &applications_; }
  [[nodiscard]] bool isSearching() const { return searching_; }
  // Searches the applications that are installed now.
  Q_INVOKABLE void findApplications();
  // Opens received photos with this application from now on.
  Q_INVOKABLE void chooseApplication(const QString &entry, const QString &name);
  Q_INVOKABLE void chooseNoApplication();

  // Runs the action with a photo, whether or not it is enabled.
  Q_INVOKABLE void tryOut(quarrow::WorkflowForm::Action action);
  [[nodiscard]] QStringList outcomes() const;
  [[nodiscard]] bool openingFailed() const { return openingFailed_; }
  // Removes the results of trials, since the window was closed.
  void forgetOutcomes();

signals:
  void changed();
  void searchingChanged();
  void outcomesChanged();

private:
  using Sample = std::optional<std::filesystem::path>;
  static constexpr std::size_t kActions = 4;

  [[nodiscard]] const fennick::WorkflowOptions &now() const { return store_.settings().workflow; }
  void store(const std::function<void(fennick::WorkflowOptions &)> &change);
  void tryWith(Action action, const Sample &sample);
  void open(const std::filesystem::path &file);
  void setOutcome(Action action, const QString &outcome, bool failed = false);

  fennick::SettingsStore &store_;
  fennick::PhotoLibrary &library_;
  Desktop &desktop_;
  const std::filesystem::path sampleFolder_;
  fennick::WorkflowOptions known_; // as announced last
  QString choiceError_;            // about the application that was chosen last
  ApplicationList applications_;
  bool searching_ = false;
  std::array<QString, kActions> outcomes_;
  bool openingFailed_ = false;
  std::optional<Action> asked_; // waits for the sample
  fennick::Lifetime lifetime_;
  fennick::LatestTask<std::vector<applications::InstalledApplication>> search_;
  fennick::LatestTask<Sample> sample_;
  fennick::Subscription settings_;
};

} // namespace quarrow

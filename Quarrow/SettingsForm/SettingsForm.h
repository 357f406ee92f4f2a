#pragma once

#include "FennickCore/Platform/Threads/LatestTask.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/App/Commands.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/SettingsForm/ImagingForm.h"
#include "Quarrow/SettingsForm/UploadFolder.h"
#include "Quarrow/SettingsForm/WorkflowForm.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <functional>
#include <map>
#include <vector>

namespace quarrow {

// The settings window: every field's value, its effect on the next photo, and why an input is not accepted.
// Input is stored at once or rejected: then the field keeps its value and its error says why. Fields that
// other views set as well (gallery, address, shortcut) belong to Shell.
//
// Main thread; folders are read on another thread, and only while the form is watched.
class SettingsForm : public QObject {
  Q_OBJECT
  Q_PROPERTY(quarrow::ImagingForm *imaging READ imaging CONSTANT)
  Q_PROPERTY(quarrow::WorkflowForm *workflow READ workflow CONSTANT)
  // Whether the form is visible.
  Q_PROPERTY(bool watched READ isWatched WRITE setWatched NOTIFY watchedChanged)

  Q_PROPERTY(int port READ port WRITE setPort NOTIFY changed)
  Q_PROPERTY(QString portError READ portError NOTIFY errorsChanged)
  // Whether the user has chosen the save folder; otherwise it is the default one.
  Q_PROPERTY(bool hasChosenFolder READ hasChosenFolder NOTIFY changed)
  Q_PROPERTY(bool dateSubfolders READ dateSubfolders WRITE setDateSubfolders NOTIFY changed)
  Q_PROPERTY(QString sessionSubfolder READ sessionSubfolder WRITE setSessionSubfolder NOTIFY changed)
  Q_PROPERTY(QString sessionError READ sessionError NOTIFY errorsChanged)
  // Whether files are numbered after a prefix; otherwise they are named by the time. The other four are the
  // values for numbering, even while it is off.
  Q_PROPERTY(bool numbered READ isNumbered WRITE setNumbered NOTIFY changed)
  Q_PROPERTY(QString prefix READ prefix WRITE setPrefix NOTIFY changed)
  Q_PROPERTY(QString prefixError READ prefixError NOTIFY errorsChanged)
  Q_PROPERTY(QString separator READ separator WRITE setSeparator NOTIFY changed)
  Q_PROPERTY(QString separatorError READ separatorError NOTIFY errorsChanged)
  Q_PROPERTY(int digits READ digits WRITE setDigits NOTIFY changed)
  Q_PROPERTY(int start READ start WRITE setStart NOTIFY changed)
  // For one file, in whole MB (millions of bytes).
  Q_PROPERTY(int uploadLimit READ uploadLimit WRITE setUploadLimit NOTIFY changed)
  Q_PROPERTY(QString uploadLimitMeaning READ uploadLimitMeaning NOTIFY changed)
  // Whether the folder has a limit, and which.
  Q_PROPERTY(bool limitsFolder READ limitsFolder WRITE setLimitsFolder NOTIFY changed)
  Q_PROPERTY(int folderLimit READ folderLimit WRITE setFolderLimit NOTIFY changed)
  Q_PROPERTY(bool autoPrune READ autoPrune WRITE setAutoPrune NOTIFY changed)
  Q_PROPERTY(QString folderLimitMeaning READ folderLimitMeaning NOTIFY nextChanged)
  // A folder below the save folder; empty: the folder for uploads.
  Q_PROPERTY(QString galleryFolder READ galleryFolder WRITE setGalleryFolder NOTIFY changed)
  // The choices, each with `text` and `value`.
  Q_PROPERTY(QVariantList galleryFolders READ galleryFolders NOTIFY nextChanged)
  Q_PROPERTY(QString galleryFolderMeaning READ galleryFolderMeaning NOTIFY nextChanged)

  // The name and the folder of the next photo; empty until they are known.
  Q_PROPERTY(QString nextName READ nextName NOTIFY nextChanged)
  Q_PROPERTY(QString nextFolder READ nextFolder NOTIFY nextChanged)

public:
  // What the form edits, and what it shows of the rest of the program. All outlive the object.
  struct Parts {
    fennick::SettingsStore &settings;
    fennick::PhotoLibrary &library;
    ServerModel &server; // announces another save folder
    FoldersInUse &folders;
    fennick::FileSystem &files;
    fennick::MainQueue &mainQueue;
    const fennick::Clock &clock;
    ImagingForm &imaging;
    WorkflowForm &workflow;
  };
  explicit SettingsForm(const Parts &parts);

  [[nodiscard]] ImagingForm *imaging() { return &imaging_; }
  [[nodiscard]] WorkflowForm *workflow() { return &workflow_; }
  [[nodiscard]] bool isWatched() const { return watched_; }
  void setWatched(bool watched);

  [[nodiscard]] int port() const { return now().preferredPort; }
  [[nodiscard]] QString portError() const { return error(Field::port); }
  void setPort(int port);
  [[nodiscard]] bool hasChosenFolder() const { return now().saveFolderBookmark.has_value(); }
  // Resets the save folder to the default one.
  Q_INVOKABLE void useDefaultFolder();
  [[nodiscard]] bool dateSubfolders() const { return now().dateSubfolders; }
  void setDateSubfolders(bool wanted);
  [[nodiscard]] QString sessionSubfolder() const;
  [[nodiscard]] QString sessionError() const { return error(Field::session); }
  // Empty for none; spaces around the name are removed.
  void setSessionSubfolder(const QString &name);

  [[nodiscard]] bool isNumbered() const;
  void setNumbered(bool numbered);
  [[nodiscard]] QString prefix() const { return QString::fromStdString(numbering().prefix); }
  [[nodiscard]] QString prefixError() const { return error(Field::prefix); }
  void setPrefix(const QString &prefix);
  [[nodiscard]] QString separator() const { return QString::fromStdString(numbering().separator); }
  [[nodiscard]] QString separatorError() const { return error(Field::separator); }
  void setSeparator(const QString &separator);
  [[nodiscard]] int digits() const { return static_cast<int>(numbering().digits); }
  void setDigits(int digits);
  [[nodiscard]] int start() const;
  void setStart(int start);

  [[nodiscard]] int uploadLimit() const;
  void setUploadLimit(int megabytes);
  [[nodiscard]] QString uploadLimitMeaning() const;
  [[nodiscard]] bool limitsFolder() const { return now().folderLimit.value_or(0) > 0; }
  void setLimitsFolder(bool limits);
  [[nodiscard]] int folderLimit() const;
  void setFolderLimit(int limit);
  [[nodiscard]] bool autoPrune() const { return now().autoPrune; }
  void setAutoPrune(bool wanted);
  [[nodiscard]] QString folderLimitMeaning() const;
  [[nodiscard]] QString galleryFolder() const;
  void setGalleryFolder(const QString &folder);
  [[nodiscard]] QVariantList galleryFolders() const;
  [[nodiscard]] QString galleryFolderMeaning() const;
  [[nodiscard]] QString nextName() const;
  [[nodiscard]] QString nextFolder() const;

signals:
  void changed();
  void errorsChanged();
  void nextChanged();
  void watchedChanged();

private:
  enum class Field { port, session, prefix, separator };

  [[nodiscard]] const fennick::AppSettings &now() const { return store_.settings(); }
  [[nodiscard]] QString error(Field field) const;
  void setError(Field field, const QString &problem);
  // Stores the change unless there is a problem with the input.
  void store(Field field, const QString &problem, const std::function<void(fennick::AppSettings &)> &change);
  void store(const std::function<void(fennick::AppSettings &)> &change);
  [[nodiscard]] fennick::PrefixSequenceNaming numbering() const;
  void storeNumbering(const std::function<void(fennick::PrefixSequenceNaming &)> &change);
  void follow(const fennick::AppSettings &settings);
  void lookAgain();

  fennick::SettingsStore &store_;
  FoldersInUse &folders_;
  fennick::FileSystem &files_;
  const fennick::Clock &clock_;
  fennick::AppSettings known_;           // that were last announced
  fennick::PrefixSequenceNaming unused_; // the numbering while files are named by the time
  int lastLimit_;                        // of the folder, while it has none
  std::map<Field, QString> errors_;      // that stand
  UploadFolder next_;
  bool watched_ = false;
  fennick::LatestTask<UploadFolder> look_;
  ImagingForm &imaging_;
  WorkflowForm &workflow_;
  std::vector<fennick::Subscription> subscriptions_;
};

} // namespace quarrow

#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Storage/BatchRename.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/Actions/ExportForm.h"
#include "Quarrow/Actions/FileJobs.h"
#include "Quarrow/Actions/FileTools.h"
#include "Quarrow/Actions/PhotoUndo.h"
#include "Quarrow/Actions/RenameForm.h"
#include "Quarrow/App/Applications.h"
#include "Quarrow/App/Commands.h"
#include "Quarrow/App/Desktop.h"
#include "Quarrow/App/PhotoSelection.h"
#include "Quarrow/App/ServerModel.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quarrow {

// Actions on the selected photos in the order of the wall. Files are changed on a thread of its own; library
// and selection follow at once, failures of single files are collected into one message, and undo entries are
// kept while the program runs. Main thread.
class PhotoActions : public QObject {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY selectionChanged)       // selected photos and videos
  Q_PROPERTY(int pictures READ pictures NOTIFY selectionChanged) // selected photos that can be rotated
  // The programs for files like the first one (all programs that open files if there is none), the default
  // one first, each with `id` and `name`; see `lookForApplications`.
  Q_PROPERTY(QVariantList applications READ applications NOTIFY applicationsChanged)
  Q_PROPERTY(quarrow::FileJobs *jobs READ jobs CONSTANT)
  Q_PROPERTY(quarrow::RenameForm *renaming READ renaming CONSTANT)
  Q_PROPERTY(quarrow::ExportForm *exporting READ exporting CONSTANT)
  // The last action as a sentence, shown for a few seconds; empty: none.
  Q_PROPERTY(QString note READ note NOTIFY noteChanged)
  Q_PROPERTY(bool noteCanBeUndone READ noteCanBeUndone NOTIFY noteChanged)
  // Set while the user reads the note or is about to press its button: it stays until this is false again.
  Q_PROPERTY(bool noteHeld READ noteHeld WRITE setNoteHeld NOTIFY noteHeldChanged)
  Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoChanged)
  // Whether some photos on the wall have a custom order.
  Q_PROPERTY(bool canSortByDate READ canSortByDate NOTIFY canSortByDateChanged)
  // The last failure: a sentence, and a line for each file. Empty if there is none or it was dismissed.
  Q_PROPERTY(QString failure READ failure NOTIFY failureChanged)
  Q_PROPERTY(QStringList failureLines READ failureLines NOTIFY failureChanged)

public:
  using Paths = std::vector<std::filesystem::path>;
  static constexpr int kManyToOpen = 10; // opening more photos needs a confirmation

  enum Rotation { Clockwise, Anticlockwise };
  Q_ENUM(Rotation)
  enum Confirmation { Unconfirmed, Confirmed };
  Q_ENUM(Confirmation)

  // What the actions act on and with. All outlive the object.
  struct Parts {
    fennick::PhotoLibrary &library;
    PhotoSelection &selection;
    const ServerModel &server; // for the save folder
    PhotoCommands &commands;
    FileTools tools;
    Desktop &desktop;
    fennick::MainQueue &mainQueue;
  };
  explicit PhotoActions(const Parts &parts);

  [[nodiscard]] int count() const { return static_cast<int>(selected_.size()); }
  [[nodiscard]] int pictures() const;
  [[nodiscard]] const QVariantList &applications() const { return applications_; }
  [[nodiscard]] FileJobs *jobs() { return &jobs_; }
  [[nodiscard]] RenameForm *renaming() { return &renaming_; }
  [[nodiscard]] ExportForm *exporting() { return &exporting_; }
  [[nodiscard]] const QString &note() const { return note_; }
  [[nodiscard]] bool noteCanBeUndone() const { return noteCanBeUndone_; }
  [[nodiscard]] bool noteHeld() const { return noteHeld_; }
  void setNoteHeld(bool held);
  [[nodiscard]] bool canUndo() const { return !undoEntries_.empty(); }
  [[nodiscard]] bool canSortByDate() const { return library_.isArranged(); }
  [[nodiscard]] const QString &failure() const { return failure_; }
  [[nodiscard]] QStringList failureLines() const { return failures_.lines(); }

  // Opens each photo in the default program for its kind. More than kManyToOpen only if `Confirmed`;
  // otherwise `askedToOpenMany` is emitted.
  Q_INVOKABLE void open(quarrow::PhotoActions::Confirmation confirmation = Unconfirmed);
  Q_INVOKABLE void openWith(const QString &application); // the `id` of a program
  Q_INVOKABLE void lookForApplications();
  Q_INVOKABLE void showInFolder();
  Q_INVOKABLE void copy();
  // Renames the single selected photo and keeps its extension. Returns what is wrong with the name, or an
  // empty text. Waits for the disk.
  Q_INVOKABLE QString rename(const QString &name);
  // Rotates the selected pictures by a quarter turn; videos are skipped.
  Q_INVOKABLE void rotate(quarrow::PhotoActions::Rotation rotation);
  Q_INVOKABLE void trash();
  // Removes the custom order of the folders that the wall shows.
  Q_INVOKABLE void sortByDate();
  // Undoes the last action: a deletion, a rotation, new names or another order. What fails or is stopped can
  // be undone again.
  Q_INVOKABLE void undo();
  Q_INVOKABLE void dismissNote();
  Q_INVOKABLE void dismissFailure();

signals:
  void selectionChanged();
  void applicationsChanged();
  void noteChanged();
  void noteHeldChanged();
  void undoChanged();
  void canSortByDateChanged();
  void failureChanged();
  void askedToOpenMany(int count);

private:
  void follow();
  void renameBatch(const Paths &photos, const fennick::PhotoFileOps::Numbering &numbering,
                   const std::function<void(bool, const QString &)> &finished);
  void finishTrash(Outcome outcome);
  void undoArrangement(const Arrangement &arrangement);
  void finishUndo(const UndoEntry &entry, Outcome outcome);
  void noteRestored(const Outcome &outcome);
  void sayWhatIsLeft(Outcome outcome);
  void failOrder(const QString &what, const std::error_code &reason);
  enum class Selecting { whatWas, all };
  void adopt(const std::vector<fennick::Renaming> &renamings, Selecting selecting = Selecting::whatWas);
  void remember(UndoEntry entry);
  enum class UndoOffer { none, undo };
  void say(const QString &note, UndoOffer offer);
  void hideNoteLater();
  void fail(const QString &sentence, Failures &&failures);
  [[nodiscard]] Desktop::Failed failedTo(const QString &what);

  fennick::PhotoLibrary &library_;
  PhotoSelection &selection_;
  PhotoCommands &commands_;
  const FileTools tools_;
  Desktop &desktop_;
  fennick::MainQueue &mainQueue_;
  fennick::Lifetime lifetime_;
  std::vector<fennick::Subscription> subscriptions_;

  Paths selected_; // in the order of the wall
  QVariantList applications_;
  std::vector<UndoEntry> undoEntries_; // the latest one last
  QString note_;
  bool noteCanBeUndone_ = false;
  bool noteHeld_ = false;
  fennick::Lifetime noteTimer_;
  QString failure_;
  Failures failures_;

  FileJobs jobs_; // its work uses `tools_` only, and ends with it
  RenameForm renaming_;
  ExportForm exporting_;
};

} // namespace quarrow

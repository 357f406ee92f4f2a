#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
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

// What people do to the photos that are selected, in the order of the wall. Files change on a thread of its
// own; library and selection follow at once, single failures are collected into one message, and what can be
// taken back is remembered as long as the program runs. Main thread.
class PhotoActions : public QObject {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY selectionChanged)       // selected photos and videos
  Q_PROPERTY(int pictures READ pictures NOTIFY selectionChanged) // of them, what can be turned
  // The programs that are made for files like the first one (all that take files when none is), the usual one
  // first, each with `id` and `name`; see `lookForApplications`.
  Q_PROPERTY(QVariantList applications READ applications NOTIFY applicationsChanged)
  Q_PROPERTY(quarrow::FileJobs *jobs READ jobs CONSTANT)
  Q_PROPERTY(quarrow::RenameForm *renaming READ renaming CONSTANT)
  Q_PROPERTY(quarrow::ExportForm *exporting READ exporting CONSTANT)
  // What was done last, for a few seconds; empty: nothing to say.
  Q_PROPERTY(QString note READ note NOTIFY noteChanged)
  Q_PROPERTY(bool noteCanBeUndone READ noteCanBeUndone NOTIFY noteChanged)
  // Somebody reads the note, or is about to press its button: it stays until this is false again.
  Q_PROPERTY(bool noteHeld READ noteHeld WRITE setNoteHeld NOTIFY noteHeldChanged)
  Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoChanged)
  // Some photos on the wall have a custom order.
  Q_PROPERTY(bool canSortByDate READ canSortByDate NOTIFY canSortByDateChanged)
  // What went wrong last: a sentence, and a line for each file. Empty until something does, and again once it
  // is dismissed.
  Q_PROPERTY(QString failure READ failure NOTIFY failureChanged)
  Q_PROPERTY(QStringList failureLines READ failureLines NOTIFY failureChanged)

public:
  using Paths = std::vector<std::filesystem::path>;
  static constexpr int kManyToOpen = 10; // more are opened only after a question

  // All outlive the object.
  // What the actions act on and with. All outlive the object.
  struct Parts {
    fennick::PhotoLibrary &library;
    PhotoSelection &selection;
    const ServerModel &server; // knows the save folder
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

  // Each in the program that people use for its kind. More than kManyToOpen only when `evenMany`; otherwise
  // `askedToOpenMany` is emitted.
  Q_INVOKABLE void open(bool evenMany = false);
  Q_INVOKABLE void openWith(const QString &application); // the `id` of one
  Q_INVOKABLE void lookForApplications();
  Q_INVOKABLE void showInFolder();
  Q_INVOKABLE void copy();
  // Gives the one that is selected another name; its extension stays. Returns what stands in the way, or
  // nothing. Waits for the disk.
  Q_INVOKABLE QString rename(const QString &name);
  Q_INVOKABLE void rotate(bool clockwise);
  Q_INVOKABLE void trash();
  // Removes the custom order of the folders that the wall shows.
  Q_INVOKABLE void sortByDate();
  // Takes back what was done last: a deletion, a rotation, new names or another order. What fails or is
  // stopped can be undone again.
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
  void sayWhatIsLeft(Outcome &&outcome);
  void failOrder(const QString &what, const std::error_code &reason);
  enum class Selecting { whatWas, all };
  void adopt(const std::vector<fennick::Renaming> &renamings, Selecting selecting = Selecting::whatWas);
  void remember(UndoEntry entry);
  void say(const QString &note, bool canBeUndone);
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
  std::vector<UndoEntry> undoEntries_; // the latest last
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

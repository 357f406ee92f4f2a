#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Storage/BatchRename.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "Quarrow/Actions/FileJobs.h"
#include "Quarrow/Actions/RenamePreview.h"

#include <QObject>
#include <QString>

#include <filesystem>
#include <functional>
#include <vector>

namespace quarrow {

// The batch rename dialog: the user's input, the resulting names, and any problem with them. Main thread.
class RenameForm : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString prefix READ prefix WRITE setPrefix NOTIFY changed)
  Q_PROPERTY(int digits READ digits WRITE setDigits NOTIFY changed)
  Q_PROPERTY(int start READ start WRITE setStart NOTIFY changed)
  Q_PROPERTY(int count READ count NOTIFY changed)
  Q_PROPERTY(quarrow::RenamePreview *preview READ preview CONSTANT)
  // What is wrong with the input, or why the photos could not be renamed; empty if nothing is.
  Q_PROPERTY(QString problem READ problem NOTIFY changed)
  // Whether the preview is up to date and there is something to rename.
  Q_PROPERTY(bool ready READ ready NOTIFY changed)
  Q_PROPERTY(bool busy READ busy NOTIFY changed) // photos are being renamed

public:
  using Paths = std::vector<std::filesystem::path>;
  using Renamings = std::vector<fennick::Renaming>;

  // The references outlive the form. `selected` returns the photos in their order; `rename` renames them and
  // calls its last argument with whether it did, and with the problem unless the user stopped it.
  using Apply = std::function<void(const Paths &, const fennick::PhotoFileOps::Numbering &,
                                   std::function<void(bool, const QString &)>)>;
  RenameForm(fennick::FileSystem &files, fennick::MainQueue &mainQueue, FileJobs &jobs,
             std::function<Paths()> selected, Apply rename);

  [[nodiscard]] const QString &prefix() const { return prefix_; }
  void setPrefix(const QString &prefix);
  [[nodiscard]] int digits() const { return digits_; }
  void setDigits(int digits);
  [[nodiscard]] int start() const { return start_; }
  void setStart(int start);
  [[nodiscard]] int count() const { return static_cast<int>(photos_.size()); }
  [[nodiscard]] RenamePreview *preview() { return &preview_; }
  [[nodiscard]] const QString &problem() const { return problem_; }
  [[nodiscard]] bool ready() const { return ready_; }
  [[nodiscard]] bool busy() const { return busy_; }

  // Starts with the photos that are selected now.
  Q_INVOKABLE void begin();
  // Renames them after the preview is up to date; `finished` follows unless there is a problem.
  Q_INVOKABLE void apply();

signals:
  void changed();
  // Every file was renamed, or none: then `problem` says why, and is empty if the user stopped it.
  void finished(bool renamed);

private:
  [[nodiscard]] fennick::PhotoFileOps::Numbering numbering() const;
  void edited();
  void look();
  void show(const fennick::PhotoFileOps::Result<Renamings> &names);
  void end(bool renamed, const QString &problem);

  fennick::FileSystem &files_;
  fennick::MainQueue &mainQueue_;
  FileJobs &jobs_;
  const std::function<Paths()> selected_;
  const Apply rename_;

  QString prefix_;
  int digits_ = 3;
  int start_ = 1;
  Paths photos_;
  RenamePreview preview_;
  QString problem_;
  bool ready_ = false;
  bool busy_ = false;
  bool pending_ = false; // the preview is not up to date
  bool appliesWhenReady_ = false;
  fennick::Lifetime edition_; // of the current input
};

} // namespace quarrow

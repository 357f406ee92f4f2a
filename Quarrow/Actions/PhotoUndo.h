#pragma once

#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/Actions/Failures.h"
#include "Quarrow/Actions/FileJobs.h"
#include "Quarrow/Actions/FileTools.h"

#include <filesystem>
#include <variant>
#include <vector>

// Actions on photos that can be taken back.
namespace quarrow {

// What was done, in so far as it worked.
struct Deletion {
  std::vector<fennick::Trashed> files;
};
struct Rename {
  std::vector<fennick::Renaming> files;
};
struct Turn {
  std::vector<std::filesystem::path> files;
  fennick::PhotoFileOps::QuarterTurn direction = fennick::PhotoFileOps::QuarterTurn::clockwise;
};
// Another order of the photos, which the library takes back.
struct Arrangement {
  fennick::PhotoLibrary::RearrangementRef change;
};
using UndoEntry = std::variant<Deletion, Rename, Turn, Arrangement>;

// The number of files; 1 for an arrangement.
[[nodiscard]] int countOf(const UndoEntry &entry);
// A entry that changed nothing needs no way back.
[[nodiscard]] inline bool isEmpty(const UndoEntry &entry) { return countOf(entry) == 0; }

// The files of a entry that lie under other names by now, so that taking it back finds them and nobody else.
void follow(UndoEntry &entry, const std::vector<fennick::Renaming> &renamings);

// What came of an action, or of taking one back.
struct Outcome {
  UndoEntry done; // what can be taken back now
  // What failed or was stopped and may work later, as the entry whose undoing does it: `undo` keeps it.
  UndoEntry left = Deletion{};
  Failures failures{};
  QString problem{};                          // of all of it
  std::vector<std::filesystem::path> files{}; // where the files are now
  std::vector<fennick::Renaming> renamed{};   // that could not have their old name back
};

// Each does its work on the thread that it is called on, file by file; what was stopped has done a part.
[[nodiscard]] Outcome moveToTrash(const std::vector<std::filesystem::path> &files, const FileTools &tools,
                                  FileJobs::Ticket &ticket);
[[nodiscard]] Outcome turn(const std::vector<std::filesystem::path> &files,
                           fennick::PhotoFileOps::QuarterTurn direction, const FileTools &tools,
                           FileJobs::Ticket &ticket);
// All files get their new names, or all keep the old ones.
[[nodiscard]] Outcome renameAll(const std::vector<fennick::Renaming> &renamings, const FileTools &tools,
                                FileJobs::Ticket &ticket);
// Undoes everything but an arrangement. Files that are gone are reported and not left for later.
[[nodiscard]] Outcome takeBack(const UndoEntry &entry, const FileTools &tools, FileJobs::Ticket &ticket);

} // namespace quarrow

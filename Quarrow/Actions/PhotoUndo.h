#pragma once

#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Storage/BatchRename.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "FennickCore/Storage/PhotoRotation.h"
#include "Quarrow/Actions/Failures.h"
#include "Quarrow/Actions/FileJobs.h"
#include "Quarrow/Actions/FileTools.h"

#include <filesystem>
#include <variant>
#include <vector>

// Actions on photos that can be undone.
namespace quarrow {

// What was done successfully.
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
// Another order of the photos, which the library undoes.
struct Arrangement {
  fennick::PhotoLibrary::RearrangementRef change;
};
using UndoEntry = std::variant<Deletion, Rename, Turn, Arrangement>;

// The number of files; 1 for an arrangement.
[[nodiscard]] int countOf(const UndoEntry &entry);
// An entry that changed nothing is not kept.
[[nodiscard]] inline bool isEmpty(const UndoEntry &entry) { return countOf(entry) == 0; }

// Updates the paths in an entry after its files were renamed, so that undoing it finds them and no other
// files.
void follow(UndoEntry &entry, const std::vector<fennick::Renaming> &renamings);

// The result of an action or of undoing one.
struct Outcome {
  UndoEntry done; // what can be undone now
  // What failed or was stopped and may succeed later, as an entry that `undo` keeps.
  UndoEntry left = Deletion{};
  Failures failures{};
  QString problem{};                          // of all of it
  std::vector<std::filesystem::path> files{}; // where the files are now
  std::vector<fennick::Renaming> renamed{};   // that could not have their old name back
};

// Each function works file by file on the calling thread; if it is stopped, the files so far are done.
[[nodiscard]] Outcome moveToTrash(const std::vector<std::filesystem::path> &files, const FileTools &tools,
                                  FileJobs::Ticket &ticket);
[[nodiscard]] Outcome turn(const std::vector<std::filesystem::path> &files,
                           fennick::PhotoFileOps::QuarterTurn direction, const FileTools &tools,
                           FileJobs::Ticket &ticket);
// Gives all files their new names or none.
[[nodiscard]] Outcome renameAll(const std::vector<fennick::Renaming> &renamings, const FileTools &tools,
                                FileJobs::Ticket &ticket);
// Undoes everything except an arrangement. Files that are gone are reported and not kept for later.
[[nodiscard]] Outcome takeBack(const UndoEntry &entry, const FileTools &tools, FileJobs::Ticket &ticket);

} // namespace quarrow

#pragma once

#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/Actions/ActionServices.h"
#include "Quarrow/Actions/Failures.h"
#include "Quarrow/Actions/FileJobs.h"

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
using Deed = std::variant<Deletion, Rename, Turn, Arrangement>;

// The number of files; 1 for an arrangement.
[[nodiscard]] int countOf(const Deed &deed);
// A deed that changed nothing needs no way back.
[[nodiscard]] inline bool isEmpty(const Deed &deed) { return countOf(deed) == 0; }

// The files of a deed that lie under other names by now, so that taking it back finds them and nobody else.
void follow(Deed &deed, const std::vector<fennick::Renaming> &renamings);

// What came of an action, or of taking one back.
struct Outcome {
  Deed done; // what can be taken back now
  // What failed or was stopped and may work later, as the deed whose undoing does it: `undo` keeps it.
  Deed left = Deletion{};
  Failures failures{};
  QString problem{};                          // of all of it
  std::vector<std::filesystem::path> files{}; // where the files are now
  std::vector<fennick::Renaming> renamed{};   // that could not have their old name back
};

// Each does its work on the thread that it is called on, file by file; what was stopped has done a part.
[[nodiscard]] Outcome moveToTrash(const std::vector<std::filesystem::path> &files,
                                  const ActionServices &services, FileJobs::Ticket &ticket);
[[nodiscard]] Outcome turn(const std::vector<std::filesystem::path> &files,
                           fennick::PhotoFileOps::QuarterTurn direction, const ActionServices &services,
                           FileJobs::Ticket &ticket);
// All files get their new names, or all keep the old ones.
[[nodiscard]] Outcome renameAll(const std::vector<fennick::Renaming> &renamings,
                                const ActionServices &services, FileJobs::Ticket &ticket);
// Undoes everything but an arrangement. Files that are gone are reported and not left for later.
[[nodiscard]] Outcome takeBack(const Deed &deed, const ActionServices &services, FileJobs::Ticket &ticket);

} // namespace quarrow

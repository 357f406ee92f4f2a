#include "Quarrow/Actions/PhotoUndo.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Storage/BatchRename.h"
#include "FennickCore/Storage/PhotoRotation.h"

#include <algorithm>
#include <utility>

namespace quarrow {

namespace ops = fennick::PhotoFileOps;
namespace fs = std::filesystem;

namespace {

ops::QuarterTurn opposite(ops::QuarterTurn direction) {
  return direction == ops::QuarterTurn::clockwise ? ops::QuarterTurn::anticlockwise
                                                  : ops::QuarterTurn::clockwise;
}

Outcome restore(const Deletion &deletion, const FileTools &tools, FileJobs::Ticket &ticket) {
  Outcome outcome;
  Deletion left;
  int step = 0;
  for (const auto &trashed : deletion.files) {
    if (!ticket.reached(step++)) {
      left.files.push_back(trashed);
      continue;
    }
    const auto back = fennick::restoreFromTrash(trashed, tools.files);
    if (!back) {
      outcome.failures.add(trashed.original, back.error());
      if (back.error() != std::errc::no_such_file_or_directory)
        left.files.push_back(trashed);
      continue;
    }
    outcome.files.push_back(*back);
    if (*back != trashed.original)
      outcome.renamed.push_back({.from = trashed.original, .to = *back});
  }
  outcome.left = std::move(left);
  return outcome;
}

Rename reversed(const Rename &rename) {
  Rename back;
  for (const auto &[from, to] : rename.files)
    back.files.push_back({.from = to, .to = from});
  return back;
}

bool isGone(const fs::path &file) {
  const auto status = fennick::fileStatus(file);
  return !status && status.error() == std::errc::no_such_file_or_directory;
}

// Returns what remains of a rename after a failed attempt to undo it, which left some files with the names in
// `moved`.
Rename remaining(Rename rename, const std::vector<fennick::Renaming> &moved) {
  for (auto &renaming : rename.files) {
    const auto now = std::ranges::find(moved, renaming.to, &fennick::Renaming::from);
    if (now != moved.end())
      renaming.to = now->to;
  }
  std::erase_if(rename.files, [](const auto &renaming) { return renaming.from == renaming.to; });
  return rename;
}

Outcome renameBack(const Rename &rename, const FileTools &tools, FileJobs::Ticket &ticket) {
  Rename present;
  Failures gone;
  for (const auto &renaming : rename.files)
    if (isGone(renaming.to))
      gone.add(renaming.to, std::make_error_code(std::errc::no_such_file_or_directory));
    else
      present.files.push_back(renaming);
  Outcome outcome = renameAll(reversed(present).files, tools, ticket);
  outcome.failures = std::move(gone);
  if (outcome.files.empty()) // none, or all
    outcome.left = remaining(present, std::get<Rename>(outcome.done).files);
  return outcome;
}

// Returns whether rotating a picture again may succeed after it failed.
bool mayTurnLater(const fs::path &file, const ops::OpError &error) {
  return error.kind != ops::OpError::Kind::notAnImage && !isGone(file);
}

} // namespace

int countOf(const UndoEntry &entry) {
  return std::visit(
      [](const auto &each) {
        if constexpr (requires { each.files; })
          return static_cast<int>(each.files.size());
        else
          return 1;
      },
      entry);
}

void follow(UndoEntry &entry, const std::vector<fennick::Renaming> &renamings) {
  const auto adopt = [&](fs::path &file) {
    for (const auto &[from, to] : renamings)
      if (file == from) {
        file = to;
        return;
      }
  };
  if (auto *turned = std::get_if<Turn>(&entry))
    for (auto &file : turned->files)
      adopt(file);
  if (auto *renamed = std::get_if<Rename>(&entry))
    for (auto &renaming : renamed->files)
      adopt(renaming.to);
}

Outcome moveToTrash(const std::vector<fs::path> &files, const FileTools &tools, FileJobs::Ticket &ticket) {
  Outcome outcome;
  Deletion deletion;
  for (int step = 0; const auto &file : files) {
    if (!ticket.reached(step++))
      break;
    if (auto trashed = tools.trash.moveToTrash(file)) {
      deletion.files.push_back(std::move(*trashed));
      outcome.files.push_back(file);
    } else if (trashed.error() == std::errc::not_supported) {
      outcome.failures.add(file, Failures::tr("它所在的磁盘没有废纸篓").toStdString());
    } else {
      outcome.failures.add(file, trashed.error());
    }
  }
  outcome.done = std::move(deletion);
  return outcome;
}

Outcome turn(const std::vector<fs::path> &files, ops::QuarterTurn direction, const FileTools &tools,
             FileJobs::Ticket &ticket) {
  Outcome outcome;
  Turn turned{.files = {}, .direction = direction};
  Turn left{.files = {}, .direction = opposite(direction)};
  for (int step = 0; const auto &file : files) {
    if (!ticket.reached(step++)) {
      left.files.push_back(file);
      continue;
    }
    const auto done = ops::rotate(file, direction, tools.decoder, tools.files);
    if (done) {
      turned.files.push_back(file);
      continue;
    }
    outcome.failures.add(file, done.error().description());
    if (mayTurnLater(file, done.error()))
      left.files.push_back(file);
  }
  outcome.files = turned.files;
  outcome.done = std::move(turned);
  outcome.left = std::move(left);
  return outcome;
}

Outcome renameAll(const std::vector<fennick::Renaming> &renamings, const FileTools &tools,
                  FileJobs::Ticket &ticket) {
  Outcome outcome{.done = Rename{}};
  const auto steps = static_cast<double>(renamings.size());
  const auto done = ops::renameAll(
      renamings, tools.files, [&](double share) { return ticket.reached(static_cast<int>(share * steps)); });
  if (done) {
    outcome.done = Rename{.files = renamings};
    for (const auto &renaming : renamings)
      outcome.files.push_back(renaming.to);
    return outcome;
  }
  const auto &error = done.error();
  outcome.done = Rename{.files = error.left}; // names that some files still have
  if (error.cause != std::errc::operation_canceled || !error.left.empty())
    outcome.problem = problemText(error);
  return outcome;
}

Outcome takeBack(const UndoEntry &entry, const FileTools &tools, FileJobs::Ticket &ticket) {
  if (const auto *deletion = std::get_if<Deletion>(&entry))
    return restore(*deletion, tools, ticket);
  if (const auto *turned = std::get_if<Turn>(&entry))
    return turn(turned->files, opposite(turned->direction), tools, ticket);
  return renameBack(std::get<Rename>(entry), tools, ticket);
}

} // namespace quarrow

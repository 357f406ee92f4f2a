#include "Quarrow/Actions/PhotoUndo.h"

#include <utility>

namespace quarrow {

namespace ops = fennick::PhotoFileOps;
namespace fs = std::filesystem;

namespace {

ops::QuarterTurn opposite(ops::QuarterTurn direction) {
  return direction == ops::QuarterTurn::clockwise ? ops::QuarterTurn::anticlockwise
                                                  : ops::QuarterTurn::clockwise;
}

Outcome restore(const Deletion &deletion, const ActionServices &services, FileJobs::Ticket &ticket) {
  Outcome outcome;
  Deletion left;
  int step = 0;
  for (const auto &trashed : deletion.files) {
    if (!ticket.reached(step++)) {
      left.files.push_back(trashed);
      continue;
    }
    const auto back = fennick::restoreFromTrash(trashed, services.files);
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

} // namespace

int countOf(const Deed &deed) {
  return std::visit([](const auto &each) { return static_cast<int>(each.files.size()); }, deed);
}

void follow(Deed &deed, const std::vector<fennick::Renaming> &renamings) {
  const auto adopt = [&](fs::path &file) {
    for (const auto &[from, to] : renamings)
      if (file == from) {
        file = to;
        return;
      }
  };
  if (auto *turned = std::get_if<Turn>(&deed))
    for (auto &file : turned->files)
      adopt(file);
  if (auto *renamed = std::get_if<Rename>(&deed))
    for (auto &renaming : renamed->files)
      adopt(renaming.to);
}

Outcome moveToTrash(const std::vector<fs::path> &files, const ActionServices &services,
                    FileJobs::Ticket &ticket) {
  Outcome outcome;
  Deletion deletion;
  for (int step = 0; const auto &file : files) {
    if (!ticket.reached(step++))
      break;
    if (auto trashed = services.trash.moveToTrash(file)) {
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

Outcome turn(const std::vector<fs::path> &files, ops::QuarterTurn direction, const ActionServices &services,
             FileJobs::Ticket &ticket) {
  Outcome outcome;
  Turn turned{.files = {}, .direction = direction};
  for (int step = 0; const auto &file : files) {
    if (!ticket.reached(step++))
      break;
    if (const auto done = ops::rotate(file, direction, services.decoder, services.files))
      turned.files.push_back(file);
    else
      outcome.failures.add(file, done.error().description());
  }
  outcome.files = turned.files;
  outcome.done = std::move(turned);
  return outcome;
}

Outcome renameAll(const std::vector<fennick::Renaming> &renamings, const ActionServices &services,
                  FileJobs::Ticket &ticket) {
  Outcome outcome{.done = Rename{}};
  const auto steps = static_cast<double>(renamings.size());
  const auto done = ops::renameAll(renamings, services.files, [&](double share) {
    return ticket.reached(static_cast<int>(share * steps));
  });
  if (done) {
    outcome.done = Rename{.files = renamings};
    for (const auto &renaming : renamings)
      outcome.files.push_back(renaming.to);
    return outcome;
  }
  const auto &error = done.error();
  outcome.done = Rename{.files = error.left}; // names that some files were left with
  if (error.cause != std::errc::operation_canceled || !error.left.empty())
    outcome.problem = problemText(error);
  return outcome;
}

Outcome takeBack(const Deed &deed, const ActionServices &services, FileJobs::Ticket &ticket) {
  if (const auto *deletion = std::get_if<Deletion>(&deed))
    return restore(*deletion, services, ticket);
  if (const auto *turned = std::get_if<Turn>(&deed))
    return turn(turned->files, opposite(turned->direction), services, ticket);
  return renameAll(reversed(std::get<Rename>(deed)).files, services, ticket);
}

} // namespace quarrow

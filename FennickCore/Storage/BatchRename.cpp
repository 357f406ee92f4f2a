#include "FennickCore/Storage/BatchRename.h"

#include "FennickCore/Storage/Leftovers.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_set>

namespace fennick::PhotoFileOps {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kMostDigits = 18;
constexpr std::int64_t kHighestStart = 1'000'000'000'000'000; // leaves room to count up from
constexpr std::size_t kLongestName = 255;                     // bytes, of every Linux file system

using Paths = std::vector<fs::path>;

// The names of files outside the selection, by folder.
using ForeignNames = std::map<fs::path, std::unordered_set<std::string>>;

IOResult<ForeignNames> foreignNames(std::span<const fs::path> selection, FileSystem &files) {
  ForeignNames names;
  for (const auto &file : selection) {
    const auto [folder, isNew] = names.try_emplace(file.parent_path());
    if (!isNew)
      continue;
    const auto entries = files.list(file.parent_path());
    if (!entries)
      return std::unexpected(entries.error());
    for (const auto &entry : *entries)
      folder->second.insert(entry.name);
  }
  for (const auto &file : selection)
    names[file.parent_path()].erase(file.filename().string());
  return names;
}

std::vector<Renaming> numbered(std::span<const fs::path> selection, const Numbering &numbering,
                               const ForeignNames &foreign) {
  const std::int64_t digits = std::clamp<std::int64_t>(numbering.digits, 1, kMostDigits);
  std::int64_t number = std::clamp<std::int64_t>(numbering.start, 0, kHighestStart);
  std::vector<Renaming> renamings;
  for (const auto &file : selection) {
    const auto nextName = [&] {
      return fmt::format("{}{:0{}}{}", numbering.prefix, number++, digits, file.extension().string());
    };
    const auto &taken = foreign.at(file.parent_path());
    std::string name = nextName();
    while (taken.contains(name))
      name = nextName();
    renamings.push_back({.from = file, .to = file.parent_path() / name});
  }
  return renamings;
}

std::unexpected<OpError> systemError(std::error_code cause) {
  return std::unexpected(OpError{.kind = OpError::Kind::system, .cause = cause});
}

Paths oldNames(std::span<const Renaming> renamings) {
  Paths names;
  for (const auto &renaming : renamings)
    names.push_back(renaming.from);
  return names;
}

// Moves each file of one batch to a temporary name and then to its new one, and can undo the moves.
class Batch {
public:
  Batch(std::span<const Renaming> renamings, FileSystem &files, const Proceed &proceed)
      : files_(files), proceed_(proceed), moves_(2 * renamings.size()), original_(oldNames(renamings)),
        current_(original_) {}

  // Moves every file to its place in `targets` and stops at the first failure.
  IOResult<void> moveAll(const Paths &targets) {
    for (std::size_t i = 0; i < targets.size(); ++i) {
      if (proceed_ && !proceed_(static_cast<double>(made_.size()) / static_cast<double>(moves_)))
        return std::unexpected(std::make_error_code(std::errc::operation_canceled));
      if (auto moved = files_.moveNoReplace(current_[i], targets[i]); !moved)
        return moved;
      made_.push_back({.file = i, .from = current_[i]});
      current_[i] = targets[i];
    }
    return {};
  }

  // Undoes the moves, the latest first. A file that cannot be moved back stays; the others are moved.
  void undo() {
    std::set<std::size_t> stuck;
    for (; !made_.empty(); made_.pop_back()) {
      const auto &[file, from] = made_.back();
      if (stuck.contains(file))
        continue;
      if (files_.moveNoReplace(current_[file], from))
        current_[file] = from;
      else
        stuck.insert(file);
    }
  }

  [[nodiscard]] std::vector<Renaming> renamed() const {
    std::vector<Renaming> result;
    for (std::size_t i = 0; i < original_.size(); ++i)
      if (current_[i] != original_[i])
        result.push_back({.from = original_[i], .to = current_[i]});
    return result;
  }

private:
  struct Move {
    std::size_t file = 0;
    fs::path from;
  };

  FileSystem &files_;
  const Proceed &proceed_;
  const std::size_t moves_; // in the whole batch
  Paths original_;
  Paths current_;
  std::vector<Move> made_;
};

} // namespace

Result<std::vector<Renaming>> numberedNames(std::span<const fs::path> selection, const Numbering &numbering,
                                            FileSystem &files) {
  using namespace std::string_view_literals;
  const std::string &prefix = numbering.prefix;
  if (prefix.starts_with('.') || prefix.find_first_of("/:\0"sv) != std::string::npos)
    return std::unexpected(OpError{.kind = OpError::Kind::invalidName});
  const auto foreign = foreignNames(selection, files);
  if (!foreign)
    return systemError(foreign.error());
  auto renamings = numbered(selection, numbering, *foreign);
  for (const auto &renaming : renamings)
    if (renaming.to.filename().native().size() > kLongestName)
      return systemError(std::make_error_code(std::errc::filename_too_long));
  return renamings;
}

Result<void> renameAll(std::span<const Renaming> renamings, FileSystem &files, const Proceed &proceed) {
  Paths temporaries;
  Paths targets;
  std::set<fs::path> folders;
  for (const auto &[from, to] : renamings) {
    temporaries.push_back(from.parent_path() / batchName(from.filename().native()));
    targets.push_back(to);
    folders.insert(to.parent_path());
  }
  const std::vector<FolderUse> uses(folders.begin(), folders.end());
  Batch batch(renamings, files, proceed);
  auto moved = batch.moveAll(temporaries);
  if (moved)
    moved = batch.moveAll(targets);
  if (!moved) {
    batch.undo();
    auto left = batch.renamed();
    const auto kind = left.empty() ? OpError::Kind::system : OpError::Kind::partlyRenamed;
    return std::unexpected(OpError{.kind = kind, .cause = moved.error(), .left = std::move(left)});
  }
  for (const auto &folder : folders)
    std::ignore = files.syncDirectory(folder);
  return {};
}

Result<Paths> batchRename(std::span<const fs::path> selection, const Numbering &numbering, FileSystem &files,
                          const Proceed &proceed) {
  const auto renamings = numberedNames(selection, numbering, files);
  if (!renamings)
    return std::unexpected(renamings.error());
  if (const auto renamed = renameAll(*renamings, files, proceed); !renamed)
    return std::unexpected(renamed.error());
  Paths now;
  for (const auto &renaming : *renamings)
    now.push_back(renaming.to);
  return now;
}

} // namespace fennick::PhotoFileOps

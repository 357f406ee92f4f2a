#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The custom order of the photos in one folder, stored in that folder as ".fennick-order.json". Any thread.
namespace fennick::PhotoOrder {

using Names = std::vector<std::string>;

// Returns the names in their order; empty if there is no such file or it is not what `save` writes. Links are
// not followed.
[[nodiscard]] Names load(const std::filesystem::path &folder);

// Replaces the file atomically, or removes it if there are no names. Names that are not UTF-8 cannot be
// stored and are left out. On failure the old file remains.
IOResult<void> save(const Names &names, const std::filesystem::path &folder, FileSystem &files);

// The effect of one edit on the order of a folder.
struct Change {
  std::filesystem::path folder;
  Names before;
  Names after;
  std::set<std::string> present{}; // the photos in the folder if the edit removed its order; else empty
};
using Edit = std::function<Names(const Names &stored)>;

// Loads the order, applies `edit` and saves the result if it differs. A lock on the folder keeps other
// programs from editing it at the same time; file systems without locks are edited without one.
[[nodiscard]] IOResult<Change> edit(const std::filesystem::path &folder, const Edit &edit, FileSystem &files);

// The results of edits. Each function returns the new order and accesses no file.

// Puts new photos first, the last one of `added` foremost. An empty order stays empty: such a folder is
// sorted by date. Names without a file are kept until the order exceeds 1000 names, because a photo may be
// restored from the trash.
[[nodiscard]] Names withNew(Names order, const Names &added, const std::filesystem::path &folder);
// Returns `shown`, then the other names of `order` that are files in the folder.
[[nodiscard]] Names arranged(const Names &order, const Names &shown, const std::filesystem::path &folder);
// Returns the order before `change`, with photos that came since in front.
[[nodiscard]] Names undone(const Names &order, const Change &change);
// Inserts a photo that was restored as `name` after it had been removed as `oldName`: at the place that it
// still has, else behind the photo that has its old name now, else first.
[[nodiscard]] Names withRestored(Names order, const std::string &oldName, const std::string &name);

// The rank of each name: its place if it is listed, otherwise after all listed ones.
class Ranks {
public:
  static constexpr std::size_t kUnlisted = std::numeric_limits<std::size_t>::max();

  explicit Ranks(const std::vector<std::string> &names);
  [[nodiscard]] std::size_t of(const std::string &name) const;

private:
  std::unordered_map<std::string, std::size_t> ranks_;
};

} // namespace fennick::PhotoOrder

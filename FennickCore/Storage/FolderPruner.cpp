#include "FennickCore/Storage/FolderPruner.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/FileStatus.h"

#include <algorithm>
#include <span>
#include <tuple>

namespace fennick::FolderPruner {

std::vector<std::filesystem::path> prune(const std::filesystem::path &folder, std::int64_t limit,
                                         Trash &trash) {
  if (limit < 1)
    return {};
  auto entries = readFolder(folder, Links::follow, countsAsMedia);
  if (!entries || std::ssize(*entries) <= limit)
    return {};
  std::ranges::sort(*entries, {}, [](const FolderEntry &entry) {
    return std::tuple(entry.status.created(), std::string_view(entry.name));
  });
  std::vector<std::filesystem::path> pruned;
  for (const auto &entry : std::span(*entries).first(entries->size() - static_cast<std::size_t>(limit)))
    if (trash.moveToTrash(folder / entry.name))
      pruned.push_back(folder / entry.name);
  return pruned;
}

} // namespace fennick::FolderPruner

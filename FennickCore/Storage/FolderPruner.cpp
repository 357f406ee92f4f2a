#include "FennickCore/Storage/FolderPruner.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/FileStatus.h"

#include <algorithm>
#include <span>
#include <tuple>

namespace fennick::FolderPruner {

std::vector<std::filesystem::path> prune(const std::filesystem::path &folder, std::int64_t limit,
                                         Trash &trash, const Proceed &proceed) {
  if (limit < 1)
    return {};
  auto entries = readFolder(folder, Links::follow, countsAsMedia);
  if (!entries || std::ssize(*entries) <= limit)
    return {};
  std::ranges::sort(*entries, {}, [](const FolderEntry &entry) {
    // Files may have equal dates if the file system counts in seconds: "_9" is before "_10".
    const std::string_view name = entry.name;
    return std::tuple(entry.status.created(), name.substr(0, name.rfind('.')).size(), name);
  });
  std::vector<std::filesystem::path> pruned;
  for (const auto &[name, status] :
       std::span(*entries).first(entries->size() - static_cast<std::size_t>(limit))) {
    if (proceed && !proceed())
      break;
    if (const auto file = folder / name; fileStatus(file) == status && trash.discard(file))
      pruned.push_back(file);
  }
  return pruned;
}

} // namespace fennick::FolderPruner

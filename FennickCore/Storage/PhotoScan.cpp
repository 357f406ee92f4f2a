#include "FennickCore/Storage/PhotoScan.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Storage/PhotoOrder.h"

#include <algorithm>
#include <cstdint>
#include <ranges>
#include <span>
#include <string>

namespace fennick::PhotoScan {

namespace fs = std::filesystem;

namespace {

// A file of which nothing was read yet: a folder may contain far more files than are shown.
struct Found {
  std::size_t folder = 0; // index of its folder
  std::string name;
  FileStatus status;
};

using Index = std::uint32_t; // an index into `files`

struct Walk {
  std::vector<fs::path> folders;
  std::vector<Found> files;

  void enter(const fs::path &folder, int level) {
    const auto wanted = [level](std::string_view name, FileKind kind) {
      return kind == FileKind::directory ? level < kDeepestPhotoLevel && isPhotoFolderName(name)
                                         : countsAsMedia(name, kind);
    };
    auto entries = readFolder(folder, level == 0 ? Links::follow : Links::refuse, wanted);
    if (!entries)
      return;
    const std::size_t here = folders.size();
    folders.push_back(folder);
    for (auto &entry : *entries)
      if (entry.status.kind == FileKind::directory)
        enter(folder / entry.name, level + 1);
      else if (entry.status.kind == FileKind::regular)
        files.push_back({.folder = here, .name = std::move(entry.name), .status = entry.status});
  }

  // Newest first; by name if dates are equal, so that every scan gives the same order.
  [[nodiscard]] bool precedes(Index a, Index b) const {
    const Instant dateA = files[a].status.created();
    const Instant dateB = files[b].status.created();
    return dateA != dateB ? dateA > dateB : files[a].name < files[b].name;
  }

  [[nodiscard]] std::vector<Index> newest(std::size_t limit) const {
    std::vector<Index> all(files.size());
    std::ranges::copy(std::views::iota(Index{0}, static_cast<Index>(files.size())), all.begin());
    const auto kept = static_cast<std::ptrdiff_t>(std::min(limit, all.size()));
    std::ranges::partial_sort(all, all.begin() + kept, [this](Index a, Index b) { return precedes(a, b); });
    all.resize(static_cast<std::size_t>(kept));
    return all;
  }

  // Returns the folder's files as arranged: listed ones in their order, then the others by date.
  [[nodiscard]] std::vector<Index> arranged(std::size_t folder, const PhotoOrder::Ranks &ranks) const {
    std::vector<std::pair<std::size_t, Index>> members;
    for (Index i = 0; i < files.size(); ++i)
      if (files[i].folder == folder)
        members.emplace_back(ranks.of(files[i].name), i);
    std::ranges::sort(members, [this](const auto &a, const auto &b) {
      return a.first != b.first ? a.first < b.first : precedes(a.second, b.second);
    });
    std::vector<Index> result(members.size());
    std::ranges::transform(members, result.begin(), &std::pair<std::size_t, Index>::second);
    return result;
  }

  // Fills the places of a folder with its files in their custom order. Returns whether there is one.
  [[nodiscard]] bool applyOrder(std::size_t folder, std::span<Index> places) const {
    const auto isHere = [&](Index place) { return files[place].folder == folder; };
    if (std::ranges::none_of(places, isHere))
      return false;
    const auto order = PhotoOrder::load(folders[folder]);
    if (order.empty())
      return false;
    const auto members = arranged(folder, PhotoOrder::Ranks(order));
    auto next = members.begin();
    for (Index &place : places)
      if (isHere(place))
        place = *next++;
    return true;
  }
};

PhotoItem itemOf(const fs::path &file, std::string name, const FileStatus &status, PictureSizes &sizes) {
  const bool isVideo = isVideoName(name);
  const PictureSize size = isVideo ? PictureSize{} : sizes.of(file, status);
  return {.url = file,
          .name = std::move(name),
          .bytes = status.bytes,
          .date = status.created(),
          .pixelWidth = size.width,
          .pixelHeight = size.height,
          .isVideo = isVideo,
          .isImage = !isVideo,
          .isOversized = size.isOversized};
}

} // namespace

std::optional<Listing> items(const fs::path &folder, std::size_t limit, PictureSizes &sizes,
                             const std::function<bool()> &overtaken) {
  Walk walk;
  walk.enter(folder, 0);
  auto places = walk.newest(limit);
  Listing result;
  for (std::size_t i = 0; i < walk.folders.size(); ++i)
    if (walk.applyOrder(i, places))
      result.isArranged = true;
  result.items.reserve(places.size());
  for (const Index place : places) {
    if (overtaken())
      return std::nullopt;
    const Found &found = walk.files[place];
    result.items.push_back(itemOf(walk.folders[found.folder] / found.name, found.name, found.status, sizes));
  }
  sizes.tidy();
  return overtaken() ? std::nullopt : std::optional(std::move(result));
}

std::optional<PhotoItem> item(const fs::path &file, PictureSizes &sizes) {
  const auto status = fileStatus(file);
  std::string name = file.filename().string();
  if (!status || !countsAsMedia(name, status->kind))
    return std::nullopt;
  return itemOf(file, std::move(name), *status, sizes);
}

} // namespace fennick::PhotoScan

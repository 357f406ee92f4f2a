#include "FennickCore/Upload/Gallery.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Storage/PhotoOrder.h"
#include "FennickCore/Support/Text.h"
#include "FennickCore/Upload/FileTypeSniffer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostEntries = 500;

bool isGalleryExtension(std::string_view extension) {
  static constexpr std::array<std::string_view, 10> kExtensions{"jpg",  "jpeg", "png", "heic", "heif",
                                                                "webp", "avif", "gif", "tif",  "tiff"};
  return std::ranges::find(kExtensions, extension) != kExtensions.end();
}

// Used for listing and for requests, so that both agree. Other systems use a backslash to separate folders.
bool isGalleryName(std::string_view name) {
  return PathComponent::make(name) && !name.starts_with('.') && name.find('\\') == std::string_view::npos &&
         isGalleryExtension(lowerCasedExtension(name)) && isValidUTF8(name);
}

std::int64_t wholeSeconds(Instant instant) {
  return std::chrono::duration_cast<std::chrono::seconds>(instant.time_since_epoch()).count();
}

// Two photos that swap their names may have equal size and date, but never the same inode.
std::string versionOf(const FileStatus &status) {
  return fmt::format("{:x}-{:x}-{:x}", status.bytes, status.modified.time_since_epoch().count(),
                     status.identity.inode);
}

// Returns the first `kMostEntries` photos in gallery order.
std::vector<std::pair<std::size_t, const FolderEntry *>> firstOnes(const std::vector<FolderEntry> &entries,
                                                                   const PhotoOrder::Ranks &ranks) {
  std::vector<std::pair<std::size_t, const FolderEntry *>> all;
  all.reserve(entries.size());
  for (const auto &entry : entries)
    if (entry.status.kind == FileKind::regular)
      all.emplace_back(ranks.of(entry.name), &entry);
  const std::size_t kept = std::min(kMostEntries, all.size());
  const auto isBefore = [](const auto &a, const auto &b) {
    return std::tuple(a.first, b.second->status.created(), std::string_view(a.second->name)) <
           std::tuple(b.first, a.second->status.created(), std::string_view(b.second->name));
  };
  std::ranges::partial_sort(all, all.begin() + static_cast<std::ptrdiff_t>(kept), isBefore);
  all.resize(kept);
  return all;
}

} // namespace

GalleryListing galleryListing(const fs::path &folder, GalleryFilter *filter) {
  auto entries = readFolder(folder, Links::follow, [](std::string_view name, FileKind kind) {
    return kind == FileKind::regular && isGalleryName(name);
  });
  if (!entries)
    return {};
  if (filter != nullptr && filter->isActive(folder))
    std::erase_if(*entries,
                  [&](const auto &entry) { return filter->hides(folder / entry.name, &entry.status); });
  GalleryListing listing{.photos = {}, .total = std::ssize(*entries)};
  for (const auto &[rank, entry] : firstOnes(*entries, PhotoOrder::Ranks(PhotoOrder::load(folder))))
    listing.photos.push_back({.name = entry->name,
                              .bytes = entry->status.bytes,
                              .time = wholeSeconds(entry->status.created()),
                              .version = versionOf(entry->status)});
  return listing;
}

std::string galleryVersion(const fs::path &file) {
  const auto status = fileStatus(file);
  return status ? versionOf(*status) : std::string();
}

// Names and kinds are sufficient; no file's status is read.
std::int64_t galleryCount(const fs::path &folder, GalleryFilter *filter) {
  std::int64_t count = 0;
  const bool isFiltered = filter != nullptr && filter->isActive(folder);
  std::ignore = readFolder(folder, Links::follow, [&](std::string_view name, FileKind kind) {
    const bool counts = kind == FileKind::regular && isGalleryName(name);
    count += counts && !(isFiltered && filter->hides(folder / name, nullptr)) ? 1 : 0;
    return false;
  });
  return count;
}

std::optional<fs::path> galleryFile(std::string_view path, const fs::path &folder, GalleryFilter *filter) {
  constexpr std::string_view kThumb = "/thumb/";
  constexpr std::string_view kFile = "/file/";
  path.remove_prefix(path.starts_with(kThumb) ? kThumb.size() : kFile.size());
  const auto name = percentDecoded(path);
  if (!name || !isGalleryName(*name))
    return std::nullopt;
  fs::path file = folder / *name;
  const auto status = fileStatus(file);
  if (!status || status->kind != FileKind::regular)
    return std::nullopt;
  if (filter != nullptr && filter->isActive(folder) && filter->hides(file, &*status))
    return std::nullopt;
  return file;
}

std::string_view galleryMediaType(const fs::path &file) {
  using Entry = std::pair<std::string_view, std::string_view>;
  static constexpr std::array kMediaTypes{Entry{"jpg", "image/jpeg"},      Entry{"png", "image/png"},
                                          Entry{"heic", "image/heic"},     Entry{"webp", "image/webp"},
                                          Entry{"avif", "image/avif"},     Entry{"gif", "image/gif"},
                                          Entry{"tif", "image/tiff"},      Entry{"mp4", "video/mp4"},
                                          Entry{"mov", "video/quicktime"}, Entry{"m4v", "video/x-m4v"}};
  std::array<std::byte, FileTypeSniffer::kHeaderBytes> header{};
  auto opened = ReadableFile::open(file);
  const std::size_t length = opened ? opened->read(header).value_or(0) : 0;
  const auto extension = FileTypeSniffer::sniff(std::span(header).first(length));
  const auto *found = std::ranges::find(kMediaTypes, extension.value_or(""), &Entry::first);
  return found == kMediaTypes.end() ? "application/octet-stream" : found->second;
}

} // namespace fennick

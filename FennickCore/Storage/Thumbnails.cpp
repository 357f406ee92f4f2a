#include "FennickCore/Storage/Thumbnails.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

using Entry = ThumbnailStore::Entry;

bool isGone(const fs::path &photo) {
  const auto status = fileStatus(photo);
  return !status && status.error() == std::errc::no_such_file_or_directory &&
         fileKind(photo.parent_path()) == FileKind::directory;
}

void removeLeastUsed(const ThumbnailStore &store, std::vector<Entry> entries, std::int64_t mostBytes) {
  std::int64_t bytes = 0;
  for (const auto &entry : entries)
    bytes += entry.bytes;
  if (bytes <= mostBytes)
    return;
  std::ranges::sort(entries, {}, &Entry::used);
  const std::int64_t wanted = mostBytes / 10 * 9; // so that not every new thumbnail causes an eviction
  for (const auto &entry : entries) {
    if (bytes <= wanted)
      return;
    store.remove(entry);
    bytes -= entry.bytes;
  }
}

// Finds thumbnails of photos that are gone from a folder, and of earlier versions of photos.
class Search {
public:
  Search(const fs::path &folder, const std::vector<Entry> &entries)
      : folder_(folder), prefix_(ThumbnailStore::prefixOf(folder)) {
    for (const auto &entry : entries)
      byPhoto_.emplace(entry.photo, Candidate{.entry = &entry});
  }

  std::vector<Entry> outdated() {
    std::vector<Entry> found;
    if (!look(folder_, 0))
      return found;
    for (const auto &[photo, candidate] : byPhoto_)
      // A name that is a checksum does not tell whether it belongs to this folder.
      if (!candidate.isCurrent && (candidate.photoExists || (!prefix_.empty() && photo.starts_with(prefix_))))
        found.push_back(*candidate.entry);
    return found;
  }

private:
  struct Candidate {
    const Entry *entry = nullptr;
    bool photoExists = false; // in any version
    bool isCurrent = false;
  };

  // Folders that may contain photos, and those of their originals, which the quick look shows.
  static bool isEntered(std::string_view name, int level) {
    return level < kDeepestPhotoLevel ? !name.starts_with('.')
                                      : level == kDeepestPhotoLevel && name == kOriginalsFolder;
  }

  bool look(const fs::path &folder, int level) {
    std::vector<std::string> photos;
    const auto folders = readFolder(folder, level == 0 ? Links::follow : Links::refuse,
                                    [&](std::string_view name, FileKind kind) {
                                      if (kind == FileKind::directory)
                                        return isEntered(name, level);
                                      if (countsAsMedia(name, kind))
                                        photos.emplace_back(name);
                                      return false;
                                    });
    for (const auto &photo : photos)
      see(folder / photo);
    if (folders)
      for (const auto &each : *folders)
        look(folder / each.name, level + 1);
    return folders.has_value();
  }

  void see(const fs::path &photo) {
    for (const auto &name : ThumbnailStore::namesOf(photo)) {
      const auto [first, last] = byPhoto_.equal_range(name);
      if (first == last)
        continue;
      const auto status = fileStatus(photo);
      for (auto each = first; each != last && status; ++each) {
        each->second.photoExists = true;
        each->second.isCurrent |= versionOf(*status) == each->second.entry->version;
      }
    }
  }

  const fs::path &folder_;
  const std::string prefix_;
  std::unordered_multimap<std::string_view, Candidate> byPhoto_;
};

} // namespace

Thumbnails::Thumbnails(FileSystem &files, const fs::path &cacheDir, PictureDecoder &decoder,
                       std::int64_t mostBytes)
    : mostBytes_(mostBytes), small_(files, cacheDir / "s", kSmallPixels, kSmallAtOnce, decoder,
                                    [this] { queue_.post([this] { trim(); }); }),
      large_(files, cacheDir / "l", kLargePixels, kLargeAtOnce, decoder,
             [this] { queue_.post([this] { trim(); }); }) {}

void Thumbnails::forget(std::vector<fs::path> photos) {
  queue_.post([this, photos = std::move(photos)] {
    std::set<std::string> gone;
    for (const auto &photo : photos)
      if (isGone(photo))
        for (auto &name : ThumbnailStore::namesOf(photo))
          gone.insert(std::move(name));
    if (gone.empty())
      return;
    for (const auto *store : {&small_.store(), &large_.store()})
      for (const auto &entry : store->entries())
        if (gone.contains(entry.photo))
          store->remove(entry);
  });
}

void Thumbnails::tidy(fs::path folder) {
  queue_.post([this, folder = std::move(folder)] {
    for (const auto *store : {&small_.store(), &large_.store()}) {
      const auto entries = store->entries();
      if (!entries.empty())
        for (const auto &entry : Search(folder, entries).outdated())
          store->remove(entry);
    }
    trim();
  });
}

void Thumbnails::trim() {
  for (const auto *store : {&small_.store(), &large_.store()})
    removeLeastUsed(*store, store->entries(), mostBytes_);
}

} // namespace fennick

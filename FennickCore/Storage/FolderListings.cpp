#include "FennickCore/Storage/FolderListings.h"

#include <algorithm>

namespace fennick {

namespace {
constexpr std::size_t kMostListings = 4; // today's folder, yesterday's around midnight, and a gallery folder
}

IOResult<TakenNames *> FolderListings::at(const std::filesystem::path &folder) {
  applyChanges();
  const auto found = std::ranges::find(listings_, folder, &Listing::folder);
  const auto identity = fileIdentity(folder);
  if (found != listings_.end()) {
    if (identity && *identity == found->identity && found->watch >= 0) {
      listings_.splice(listings_.begin(), listings_, found);
      return &found->names;
    }
    forget(found);
  }
  if (!identity)
    return std::unexpected(identity.error());
  auto fresh = read(folder);
  if (!fresh)
    return std::unexpected(fresh.error());
  listings_.push_front(std::move(*fresh));
  if (listings_.size() > kMostListings)
    forget(std::prev(listings_.end()));
  return &listings_.front().names;
}

// Begins to watch before reading, so that no change falls between the two.
IOResult<FolderListings::Listing> FolderListings::read(const std::filesystem::path &folder) {
  Listing listing{.folder = folder, .identity = {}, .watch = watch_.add(folder).value_or(-1), .names = {}};
  // The same folder under another path has the same watch; the newer path replaces the older.
  std::erase_if(listings_,
                [&](const Listing &other) { return listing.watch >= 0 && other.watch == listing.watch; });
  const auto identity = fileIdentity(folder);
  auto entries = files_.list(folder);
  if (!identity || !entries) {
    if (listing.watch >= 0)
      watch_.remove(listing.watch);
    return std::unexpected(identity ? entries.error() : identity.error());
  }
  listing.identity = *identity;
  for (const auto &entry : *entries)
    listing.names.insert(entry.name, entry.kind);
  return listing;
}

void FolderListings::forget(Position listing) {
  if (listing->watch >= 0)
    watch_.remove(listing->watch);
  listings_.erase(listing);
}

void FolderListings::applyChanges() {
  for (const auto &change : watch_.drain())
    apply(change);
}

void FolderListings::apply(const DirectoryChange &change) {
  if (change.kind == DirectoryChange::Kind::overflow) {
    while (!listings_.empty())
      forget(listings_.begin());
    return;
  }
  const auto listing = std::ranges::find(listings_, change.watch, &Listing::watch);
  if (listing == listings_.end())
    return; // the folder was dropped meanwhile
  if (change.kind == DirectoryChange::Kind::lost)
    return forget(listing);
  // Reads the kind now: the entry may have vanished again or been replaced.
  const auto kind = fileKind(listing->folder / change.name);
  if (kind)
    listing->names.insert(change.name, *kind);
  else
    listing->names.erase(change.name);
}

} // namespace fennick

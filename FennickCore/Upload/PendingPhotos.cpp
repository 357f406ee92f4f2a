#include "FennickCore/Upload/PendingPhotos.h"

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Imaging/ProcessingPlan.h"
#include "FennickCore/Platform/Files/AsideFile.h"
#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/System/Random.h"
#include "FennickCore/Upload/PhotoSearch.h"

#include <fmt/format.h>

#include <tuple>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

bool covers(const PrivateData &removed, const PrivateData &wanted) {
  return (removed.location || !wanted.location) && (removed.metadata || !wanted.metadata);
}

// Another file may have taken the name since the record was written.
bool isPlaced(const PendingPlacing &placing, const PendingRecord &record) {
  const auto target = photoAt(placing.target);
  return target && target->looksLike(placing.encoding) &&
         ImagePipeline::wasPlaced(placing.output, placing.target) &&
         (placing.target != record.upload.url || target->inode != record.photo.inode);
}

// Waits while another program clears the work folder, since a record written now would be removed as well.
// The lock lasts as long as the result.
IOResult<DirectoryLock> awaitClearing(const fs::path &saveFolder) {
  return DirectoryLock::lock(saveFolder / kIncomingFolder, DirectoryLock::Mode::shared);
}

} // namespace

PendingPhotos::Arrival::Arrival(PendingPhotos &pending, Arriving arriving)
    : pending_(pending), arriving_(std::move(arriving)) {}

PendingPhotos::Arrival::~Arrival() {
  if (!completed_ && !entry_.empty())
    pending_.giveUp(entry_, arriving_.partFile);
}

IOResult<void> PendingPhotos::Arrival::willAppear(const fs::path &file) {
  if (entry_.empty()) {
    const auto photo = photoAt(arriving_.partFile);
    if (!photo)
      return std::unexpected(std::make_error_code(std::errc::no_such_file_or_directory));
    entry_ = pendingName(*photo);
    const Locked locked(pending_.lock_);
    pending_.entries_[entry_] = {.record = {.upload = arriving_.upload, .photo = *photo},
                                 .phase = Phase::arriving,
                                 .hold = arriving_.hold};
  }
  return pending_.announce(entry_, file);
}

std::string PendingPhotos::Arrival::complete() {
  completed_ = true;
  pending_.update(entry_, [](Entry &entry) { entry.phase = Phase::waiting; });
  return entry_;
}

// The record is synced before the photo can appear under its name.
IOResult<void> PendingPhotos::announce(const std::string &name, const fs::path &file) {
  update(name, [&](Entry &entry) { entry.record.upload.url = file; });
  bool needed = false;
  bool hides = false;
  {
    const Locked locked(lock_);
    needed = isToBeRecorded(entries_.at(name));
    hides = options_.dataToRemove().any();
  }
  if (!needed)
    return {};
  const auto recorded = record(name);
  return hides ? recorded : IOResult<void>();
}

// A file that remains under its final name, because its sync failed and it could not be moved back, keeps its
// entry: the next run processes it.
void PendingPhotos::giveUp(const std::string &name, const fs::path &partFile) {
  const auto entry = entryOf(name);
  if (entry && !photoAt(partFile) && photoAt(entry->record.upload.url))
    postpone(name);
  else
    forget(name);
}

bool PendingPhotos::isToBeRecorded(const Entry &entry) const {
  return ImagePipeline::mayChange(options_, lowerCasedExtension(entry.record.upload.url.native()));
}

void PendingPhotos::setFolder(const fs::path &saveFolder) {
  const Locked locked(lock_);
  if (std::exchange(folder_, saveFolder) == saveFolder)
    return;
  std::erase_if(entries_, [](const auto &entry) { return entry.second.phase == Phase::others; });
  lastRead_.reset();
  indexed_ = false;
}

bool PendingPhotos::setOptions(const ImagingOptions &options) {
  const Locked locked(lock_);
  if (std::exchange(options_, options) == options)
    return false;
  indexed_ = false;
  return true;
}

void PendingPhotos::recordUnrecorded() {
  std::vector<std::string> unrecorded;
  {
    const Locked locked(lock_);
    for (const auto &[name, entry] : entries_)
      if (!entry.recorded && (entry.phase == Phase::waiting || entry.phase == Phase::postponed) &&
          isToBeRecorded(entry))
        unrecorded.push_back(name);
  }
  for (const auto &name : unrecorded)
    std::ignore = record(name);
}

std::optional<PendingPhotos::Work> PendingPhotos::begin(const std::string &name) {
  auto entry = update(name, [](Entry &changed) { changed.phase = Phase::working; });
  if (!entry)
    return std::nullopt;
  if (entry->file) // taken over while leftovers are still being cleared
    std::ignore = awaitClearing(entry->record.upload.saveFolder);
  const bool placed = entry->record.placing && isPlaced(*entry->record.placing, entry->record);
  if (!placed) {
    entry = update(name, [](Entry &changed) { changed.record.placing.reset(); });
    if (entry && photoAt(entry->record.upload.url) != entry->record.photo) {
      locate({{name, *entry}});
      entry = entryOf(name);
    }
  }
  if (!entry)
    return std::nullopt;
  bool needed = false;
  Work work;
  {
    const Locked locked(lock_);
    work.options = options_;
    needed = !entry->recorded && isToBeRecorded(*entry);
  }
  work.upload = entry->record.upload;
  if (placed)
    work.placed = entry->record.placing;
  if (needed)
    std::ignore = record(name);
  return work;
}

IOResult<void> PendingPhotos::willPlace(const std::string &name, const fs::path &output,
                                        const fs::path &target, PrivateData remaining) {
  const auto encoding = photoAt(output);
  if (!encoding)
    return std::unexpected(std::make_error_code(std::errc::no_such_file_or_directory));
  update(name, [&](Entry &entry) {
    entry.record.placing = {
        .output = output, .target = target, .encoding = *encoding, .remaining = remaining};
  });
  return record(name);
}

void PendingPhotos::didNotPlace(const std::string &name) {
  update(name, [](Entry &entry) { entry.record.placing.reset(); });
  std::ignore = record(name); // if this fails, the next run finds that the target is not the encoding
}

bool PendingPhotos::finish(const std::string &name, const fs::path &file, PrivateData remaining,
                           PrivateData removed) {
  PrivateData wanted;
  {
    const Locked locked(lock_);
    wanted = options_.dataToRemove();
  }
  const bool keeps = wanted.overlaps(remaining);
  if (keeps && !covers(removed, wanted)) {
    update(name, [&](Entry &entry) {
      entry.record.upload.url = file;
      entry.record.photo = photoAt(file).value_or(entry.record.photo);
      entry.record.placing.reset();
    });
    std::ignore = record(name);
    return false;
  }
  if (!keeps) {
    forget(name);
    return true;
  }
  update(name, [&](Entry &entry) {
    const auto photo = photoAt(file);
    entry.record.upload.url = file;
    entry.record.photo = photo.value_or(entry.record.photo);
    entry.record.placing.reset();
    entry.record.kept = remaining;
    entry.missing = !photo;
    entry.hold.reset();
    entry.phase = Phase::postponed;
  });
  if (record(name))
    update(name, [](Entry &entry) { entry.phase = Phase::others; });
  return true;
}

void PendingPhotos::postpone(const std::string &name) {
  update(name, [](Entry &entry) {
    entry.phase = Phase::postponed;
    entry.hold.reset();
  });
}

bool PendingPhotos::isRecorded(const std::string &name) {
  const auto entry = entryOf(name);
  return entry && entry->recorded;
}

// Reads the status of each photo once if nothing is known to have changed. While the save folder's drive is
// unplugged no photo counts as gone.
void PendingPhotos::follow() {
  recordUnrecorded();
  Entries entries;
  {
    const Locked locked(lock_);
    if (entries_.empty() || !fileStatus(folder_ / kIncomingFolder))
      return;
    readOthers();
    entries = entries_;
  }
  std::erase_if(entries, [](const auto &each) {
    const auto &[name, entry] = each;
    const bool isOurs = entry.phase == Phase::waiting || entry.phase == Phase::postponed;
    if (!isOurs && !entry.record.kept)
      return true; // it may be changing at this moment
    const auto photo = photoAt(entry.record.upload.url);
    if (entry.missing) // until it returns; another photo may have its name meanwhile
      return !photo || !photo->looksLike(entry.record.photo);
    return photo == entry.record.photo;
  });
  locate(entries);
  forgetOld();
}

// Searches for photos that are not what they were under their paths.
void PendingPhotos::locate(const Entries &lost) {
  std::map<fs::path, std::vector<Entries::const_iterator>> byFolder;
  for (auto entry = lost.begin(); entry != lost.end(); ++entry)
    byFolder[entry->second.record.upload.saveFolder].push_back(entry);
  for (const auto &[folder, entries] : byFolder) {
    std::vector<PhotoIdentity> photos;
    for (const auto &entry : entries)
      photos.push_back(entry->second.record.photo);
    const auto found = findPhotos(folder, photos);
    for (std::size_t i = 0; i < entries.size(); ++i)
      relocate(entries[i]->first, entries[i]->second, found[i]);
  }
}

// A photo that was renamed is found by its identity. Any other file under its path is the photo after an
// edit, unless the photo was gone before.
void PendingPhotos::relocate(const std::string &name, const Entry &before,
                             const std::optional<fs::path> &found) {
  const auto present = found ? photoAt(*found) : photoAt(before.record.upload.url);
  const bool isPhoto = present && (found || !before.missing || present->looksLike(before.record.photo));
  bool moved = false;
  const auto entry = update(name, [&](Entry &changed) {
    if (changed.record != before.record)
      return; // its processing continued
    changed.missing = !isPhoto;
    if (!isPhoto)
      return;
    moved = true;
    changed.record.upload.url = found.value_or(before.record.upload.url);
    changed.record.photo = *present;
  });
  if (moved && entry->recorded)
    std::ignore = record(name);
}

std::optional<PendingPhotos::Entry> PendingPhotos::entryOf(const std::string &name) {
  return update(name, [](const Entry &) {});
}

template <typename Change>
std::optional<PendingPhotos::Entry> PendingPhotos::update(const std::string &name, Change change) {
  const Locked locked(lock_);
  const auto found = entries_.find(name);
  if (found == entries_.end())
    return std::nullopt;
  change(found->second);
  indexed_ = false;
  return found->second;
}

// Writes the entry's record atomically and syncs it.
IOResult<void> PendingPhotos::record(const std::string &name) {
  const auto entry = entryOf(name);
  if (!entry)
    return {};
  const auto hold = awaitClearing(entry->record.upload.saveFolder);
  const fs::path folder = entry->record.upload.saveFolder / kIncomingFolder;
  const fs::path aside = folder / (newUUID() + ".part");
  auto done = writeAside(files_, aside, encodePending(entry->record), Durability::onDisk);
  if (done) {
    done = files_.replace(aside, folder / name);
    if (!done)
      std::ignore = files_.remove(aside);
  }
  if (done)
    done = files_.syncDirectory(folder);
  if (!done) {
    log(fmt::format("cannot record that {} waits: {}", entry->record.upload.url.filename().string(),
                    done.error().message()));
    return done;
  }
  // Its processing may have ended meanwhile, if the options have changed.
  if (!update(name, [](Entry &recorded) { recorded.recorded = true; }))
    std::ignore = files_.remove(folder / name);
  return done;
}

void PendingPhotos::forget(const std::string &name) {
  const auto entry = entryOf(name);
  if (!entry)
    return;
  // Comes first, so that a finished record is not taken for one of another program.
  const auto file = entry->record.upload.saveFolder / kIncomingFolder / name;
  if (const auto removed = entry->recorded ? files_.remove(file) : IOResult<void>(); !removed)
    log(fmt::format("cannot remove {}: {}", file.string(), removed.error().message()));
  const Locked locked(lock_);
  entries_.erase(name);
  indexed_ = false;
}

} // namespace fennick

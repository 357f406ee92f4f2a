// The part of PendingPhotos that handles records of other programs and decides what phones may see.

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/DirectoryWatch.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Upload/PendingPhotos.h"
#include "FennickCore/Upload/PhotoSearch.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <ranges>
#include <tuple>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kLargestRecord = 64'000; // paths and names of 4 KB each, escaped
// Changes of a folder in quicker succession may not change its modification time.
constexpr std::chrono::seconds kFolderTime{2};
// How long a photo that is gone may still come back from the trash.
constexpr std::chrono::days kGoneTime{30};

Instant systemTime() { return std::chrono::system_clock::now(); }

// Returns nullopt if other programs hold the folder. Returns an empty hold if the file system has no locks.
std::optional<IncomingHold> holdAlone(const fs::path &folder) {
  auto lock = DirectoryLock::tryLock(folder, DirectoryLock::Mode::exclusive);
  if (!lock)
    return lock.error() == std::errc::operation_would_block ? std::nullopt : std::optional(IncomingHold());
  if (!lock->share())
    return std::nullopt;
  return std::make_shared<const DirectoryLock>(std::move(*lock));
}

} // namespace

std::vector<std::string> PendingPhotos::takeOver() {
  fs::path folder;
  {
    const Locked locked(lock_);
    readOthers();
    if (waitingOthers().empty())
      return {};
    folder = folder_ / kIncomingFolder;
    if (!seen_.insert(folder).second && !isOnLocalDrive(folder))
      return {};
  }
  const auto hold = holdAlone(folder);
  return hold ? takeOver(folder, *hold) : std::vector<std::string>();
}

std::vector<std::string> PendingPhotos::takeOver(const fs::path &incoming, const IncomingHold &hold) {
  std::vector<std::tuple<Instant, Instant, std::string>> taken;
  {
    const Locked locked(lock_);
    if (incoming != folder_ / kIncomingFolder)
      return {};
    lastRead_.reset(); // another program may have finished some of them just now
    readOthers();
    for (const auto &[name, entry] : waitingOthers()) {
      taken.emplace_back(entry.record.upload.receivedAt, entry.record.photo.modified, name);
      entries_[name].phase = Phase::waiting;
      entries_[name].hold = hold;
    }
  }
  std::ranges::sort(taken);
  const auto names = taken | std::views::elements<2>;
  return {names.begin(), names.end()};
}

PendingPhotos::Entries PendingPhotos::waitingOthers() {
  Entries waiting = entries_;
  std::erase_if(waiting, [](const auto &each) {
    return each.second.phase != Phase::others || each.second.record.kept;
  });
  return waiting;
}

// Removes the records of photos that have been gone for a long time.
void PendingPhotos::forgetOld() {
  Entries old;
  {
    const Locked locked(lock_);
    old = entries_;
  }
  std::erase_if(old, [](const auto &each) {
    const auto &[name, entry] = each;
    return entry.phase != Phase::others || systemTime() - entry.record.upload.receivedAt < kGoneTime ||
           photoAt(entry.record.upload.url);
  });
  if (old.empty())
    return;
  locate(old);
  for (const auto &[name, entry] : old)
    if (const auto now = entryOf(name); now && now->missing)
      forget(name);
}

// Reads the records if the work folder has changed since, and again until a further change would be visible.
void PendingPhotos::readOthers() {
  const fs::path folder = folder_ / kIncomingFolder;
  const auto status = fileStatus(folder);
  if (status && readIsFinal_ && lastRead_ && *lastRead_ == *status)
    return;
  lastRead_ = status ? std::optional(*status) : std::nullopt;
  readIsFinal_ = status && systemTime() - status->modified > kFolderTime;
  const auto records = readFolder(folder, Links::refuse, [](std::string_view name, FileKind kind) {
    return kind == FileKind::regular && pendingIdentity(name);
  });
  const bool couldRead =
      std::exchange(readable_, records || records.error() == std::errc::no_such_file_or_directory);
  if (!readable_) {
    if (couldRead)
      log(fmt::format("cannot list {}: {}", folder.string(), records.error().message()));
    lastRead_.reset();
    return;
  }
  std::set<std::string_view> names;
  if (records)
    for (const auto &file : *records) {
      names.insert(file.name);
      readRecord(file);
    }
  if (std::erase_if(entries_, [&](const auto &each) {
        return each.second.phase == Phase::others && !names.contains(each.first);
      }) > 0)
    indexed_ = false;
}

// A record that cannot be parsed keeps hiding the photo that its name identifies.
void PendingPhotos::readRecord(const FolderEntry &file) {
  const auto known = entries_.find(file.name);
  if (known != entries_.end() && (known->second.phase != Phase::others || known->second.file == file.status))
    return;
  const auto text = file.status.bytes <= kLargestRecord
                        ? readFile(folder_ / kIncomingFolder / file.name)
                        : std::unexpected(std::make_error_code(std::errc::file_too_large));
  auto record = text ? decodePending(*text, folder_) : std::nullopt;
  const bool damaged = !record;
  if (damaged) {
    log(fmt::format("the record {} cannot be read", file.name));
    record = {.upload = {.url = {}, .saveFolder = folder_, .receivedAt = file.status.modified},
              .photo = pendingIdentity(file.name).value_or(PhotoIdentity{}),
              .kept = PrivateData{.location = true, .metadata = true}};
  }
  entries_[file.name] = {
      .record = std::move(*record), .recorded = true, .missing = damaged, .file = file.status};
  indexed_ = false;
}

bool PendingPhotos::isActive(const fs::path &folder) {
  const Locked locked(lock_);
  if (!options_.dataToRemove().any())
    return false;
  readOthers();
  return !entries_.empty() || !readable_ || folder.filename() == kOriginalsFolder;
}

// Unprocessed uploads still contain what was removed from their encodings.
bool PendingPhotos::hides(const fs::path &file, const FileStatus *status) {
  const Locked locked(lock_);
  if (!options_.dataToRemove().any())
    return false;
  if (!readable_ || file.parent_path().filename() == kOriginalsFolder)
    return true;
  makeIndex();
  if (hiddenPaths_.contains(file.native()))
    return true;
  return status != nullptr && hiddenPhotos_.contains({status->bytes, status->modified});
}

void PendingPhotos::makeIndex() {
  if (std::exchange(indexed_, true))
    return;
  hiddenPaths_.clear();
  hiddenPhotos_.clear();
  std::vector<fs::path> hidden;
  for (const auto &[name, entry] : entries_) {
    const PendingRecord &record = entry.record;
    if (const auto &placing = record.placing; placing && options_.dataToRemove().overlaps(placing->remaining))
      hidden.push_back(placing->target);
    if (!isHidden(entry))
      continue;
    hiddenPhotos_.emplace(record.photo.bytes, record.photo.modified);
    if (!entry.missing)
      hidden.push_back(record.upload.url);
  }
  for (const auto &file : hidden) {
    hiddenPaths_.insert(file.native());
    hiddenPaths_.insert(file.lexically_normal().native());
  }
}

bool PendingPhotos::isHidden(const Entry &entry) const {
  const PrivateData wanted = options_.dataToRemove();
  return entry.record.kept ? wanted.overlaps(*entry.record.kept) : wanted.any();
}

} // namespace fennick

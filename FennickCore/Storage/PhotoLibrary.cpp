#include "FennickCore/Storage/PhotoLibrary.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr Seconds kHighlightTime{1.5};
constexpr Seconds kRescanDelay{0.3};
constexpr Seconds kBusyDelay{10}; // until pictures that met a busy decoder are read again
// A folder that keeps changing is scanned every few seconds all the same.
constexpr int kMostPostponements = 10;

bool liesIn(const fs::path &file, const std::optional<fs::path> &folder) {
  return folder && std::ranges::mismatch(*folder, file).in1 == folder->end();
}

// Applies renamings to a list whose elements have their name in `nameOf`. An element with the new name of
// another one is gone and is dropped. A list that contains the new name already is left unchanged.
template <typename List, typename Renamings, typename NameOf>
void renameIn(List &list, const Renamings &renamings, NameOf nameOf) {
  std::set<typename Renamings::key_type> replaced;
  for (const auto &element : list)
    if (const auto found = renamings.find(nameOf(element)); found != renamings.end())
      replaced.insert(found->second);
  std::erase_if(list, [&](const auto &element) {
    return replaced.contains(nameOf(element)) && !renamings.contains(nameOf(element));
  });
  for (auto &element : list)
    if (const auto found = renamings.find(nameOf(element)); found != renamings.end())
      nameOf(element) = found->second;
}

} // namespace

PhotoLibrary::PhotoLibrary(FileSystem &files, PictureDecoder &decoder, MainQueue &mainQueue,
                           std::size_t limit)
    : files_(files), mainQueue_(mainQueue), limit_(limit), sizes_(decoder) {}

PhotoLibrary::~PhotoLibrary() {
  scanUnderWay_.cancel();
  watcher_.reset();
}

Subscription PhotoLibrary::observeItems(std::function<void(const Items &)> observer) {
  return itemsObservers_.add(std::move(observer));
}

Subscription PhotoLibrary::observeListed(std::function<void(const bool &)> observer) {
  return listedObservers_.add(std::move(observer));
}

Subscription PhotoLibrary::observeArranged(std::function<void(const bool &)> observer) {
  return arrangedObservers_.add(std::move(observer));
}

Subscription PhotoLibrary::observeRearrangements(std::function<void(const RearrangementRef &)> observer) {
  return rearrangementObservers_.add(std::move(observer));
}

Subscription PhotoLibrary::observeRecentlyAdded(std::function<void(const Paths &)> observer) {
  return recentlyAddedObservers_.add(std::move(observer));
}

Subscription PhotoLibrary::observeGone(std::function<void(const Paths &)> observer) {
  return goneObservers_.add(std::move(observer));
}

void PhotoLibrary::setFolder(std::optional<fs::path> folder) {
  scanUnderWay_.cancel();
  pendingRescan_.cancel(); // it is for the previous folder
  postponed_ = 0;
  watcher_.reset();
  const bool isNew = folder != folder_;
  folder_ = std::move(folder);
  if (folder_)
    watcher_ = std::make_unique<FolderWatcher>(
        *folder_, [this] { mainQueue_.post(lifetime_.guard([this] { rescanSoon(); })); });
  scan();
  if (isNew) {
    listed_ = false;
    publish({});
    setArranged(false);
    listedObservers_.publish(listed_);
  }
}

void PhotoLibrary::scan() {
  if (!folder_)
    return;
  if (scanning_) {
    scanAgain_ = true;
    return;
  }
  scanning_ = true;
  scanAgain_ = false;
  queue_.post([this, folder = *folder_, current = scanUnderWay_.token()] {
    auto found = PhotoScan::items(folder, limit_, sizes_, [&] { return current.isCancelled(); });
    mainQueue_.post(lifetime_.guard([this, current, listing = std::move(found), wasBusy = sizes_.takeBusy()] {
      finishScan(current, listing, wasBusy);
    }));
  });
}

void PhotoLibrary::finishScan(const Lifetime::Token &current, std::optional<PhotoScan::Listing> found,
                              bool wasBusy) {
  scanning_ = false;
  if (wasBusy)
    mainQueue_.postAfter(kBusyDelay, lifetime_.guard([this] { scan(); }));
  const bool isCurrent = !current.isCancelled();
  if (scanAgain_ || !isCurrent)
    scan();
  if (!isCurrent || !found)
    return;
  const bool wasListed = std::exchange(listed_, true);
  const Items before = items_;
  publish(std::move(found->items));
  publishGone(before);
  setArranged(found->isArranged);
  if (!wasListed)
    listedObservers_.publish(listed_);
}

void PhotoLibrary::publishGone(const Items &before) const {
  Paths gone;
  for (const auto &item : before)
    gone.insert(item.url);
  for (const auto &item : items_)
    gone.erase(item.url);
  if (!gone.empty())
    goneObservers_.publish(gone);
}

// Each change postpones the scan a little, so that a burst of changes causes one scan.
void PhotoLibrary::rescanSoon() {
  if (postponed_ == kMostPostponements)
    return; // the pending scan starts now
  ++postponed_;
  pendingRescan_.cancel();
  mainQueue_.postAfter(kRescanDelay, pendingRescan_.guard([this] {
    postponed_ = 0;
    scan();
  }));
}

// Uses the queue of the scans: a later scan includes the file and is published later.
void PhotoLibrary::noteAdded(const fs::path &file) {
  if (!liesIn(file, folder_))
    return;
  queue_.post([this, file] {
    if (auto item = PhotoScan::item(file, sizes_))
      mainQueue_.post(lifetime_.guard([this, added = std::move(*item)] { insert(added); }));
  });
}

void PhotoLibrary::insert(PhotoItem item) {
  if (!liesIn(item.url, folder_)) // the folder may have changed meanwhile
    return;
  const fs::path url = item.url;
  Items changed = items_;
  std::erase_if(changed, [&](const PhotoItem &listed) { return listed.url == url; });
  changed.insert(changed.begin(), std::move(item));
  if (changed.size() > limit_)
    changed.resize(limit_);
  publish(std::move(changed));
  highlight(url);
}

void PhotoLibrary::highlight(const fs::path &file) {
  highlights_[file] = ++lastHighlight_;
  mainQueue_.postAfter(kHighlightTime, lifetime_.guard([this, file, mark = lastHighlight_] {
    const auto latest = highlights_.find(file);
    if (latest == highlights_.end() || latest->second != mark)
      return; // it was added again meanwhile
    highlights_.erase(latest);
    if (recentlyAdded_.erase(file) > 0)
      recentlyAddedObservers_.publish(recentlyAdded_);
  }));
  if (recentlyAdded_.insert(file).second)
    recentlyAddedObservers_.publish(recentlyAdded_);
}

void PhotoLibrary::publish(Items items) {
  if (items == items_)
    return;
  items_ = std::move(items);
  itemsObservers_.publish(items_);
}

void PhotoLibrary::setArranged(bool arranged) {
  if (std::exchange(arranged_, arranged) != arranged)
    arrangedObservers_.publish(arranged_);
}

void PhotoLibrary::remove(std::span<const fs::path> files) {
  scanUnderWay_.cancel();
  const Paths gone(files.begin(), files.end());
  Items changed = items_;
  std::erase_if(changed, [&](const PhotoItem &item) { return gone.contains(item.url); });
  publish(std::move(changed));
  goneObservers_.publish(gone);
}

void PhotoLibrary::rename(std::span<const Renaming> renamings) {
  scanUnderWay_.cancel();
  Paths gone;
  std::map<fs::path, fs::path> targets;
  std::map<fs::path, std::unordered_map<std::string, std::string>> names;
  for (const auto &[from, to] : renamings) {
    gone.insert(from);
    targets[from] = to;
    names[from.parent_path()][from.filename().string()] = to.filename().string();
  }
  Edits edits;
  for (auto &[folder, changes] : names)
    edits[folder] = [changed = std::move(changes)](Names order) {
      renameIn(order, changed, [](auto &name) -> auto & { return name; });
      return order;
    };
  editOrders(std::move(edits));
  Items changed = items_;
  renameIn(changed, targets, [](auto &item) -> auto & { return item.url; });
  for (auto &item : changed)
    item.name = item.url.filename().string();
  publish(std::move(changed));
  goneObservers_.publish(gone);
}

} // namespace fennick

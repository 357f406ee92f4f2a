#include "FennickCore/Storage/PhotoLibrary.h"

#include <algorithm>
#include <map>
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

// Returns the items in the places that their folders have by date, each folder's items in their order.
PhotoLibrary::Items placedByFolder(const PhotoLibrary::Items &wanted) {
  std::map<fs::path, std::vector<const PhotoItem *>> folders;
  std::vector<const PhotoItem *> byDate;
  for (const auto &item : wanted) {
    folders[item.url.parent_path()].push_back(&item);
    byDate.push_back(&item);
  }
  std::ranges::sort(byDate, [](const PhotoItem *a, const PhotoItem *b) {
    return a->date != b->date ? a->date > b->date : a < b; // adjacent items keep their order
  });
  std::map<fs::path, std::size_t> next;
  PhotoLibrary::Items placed;
  for (const auto *item : byDate) {
    const fs::path folder = item->url.parent_path();
    placed.push_back(*folders[folder][next[folder]++]);
  }
  return placed;
}

std::map<fs::path, std::vector<std::string>> namesByFolder(const PhotoLibrary::Items &items) {
  std::map<fs::path, std::vector<std::string>> names;
  for (const auto &item : items)
    names[item.url.parent_path()].push_back(item.name);
  return names;
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

void PhotoLibrary::reorder(const std::vector<fs::path> &files, Stored stored) {
  scanUnderWay_.cancel();
  std::map<fs::path, std::size_t> ranks;
  for (const auto &file : files)
    ranks.try_emplace(file, ranks.size());
  std::vector<std::pair<std::size_t, const PhotoItem *>> ranked; // files that are not named keep their order
  for (const auto &item : items_) {
    const auto found = ranks.find(item.url);
    ranked.emplace_back(found == ranks.end() ? ranks.size() : found->second, &item);
  }
  std::ranges::sort(ranked);
  Items wanted;
  for (const auto &[rank, item] : ranked)
    wanted.push_back(*item);
  Items placed = placedByFolder(wanted);
  auto edits = ordersOf(placed);
  publish(std::move(placed));
  if (edits.empty())
    return;
  setArranged(true);
  rearrange(std::move(edits), std::move(stored));
}

// Returns an edit for each folder whose photos have another order than before.
PhotoLibrary::Edits PhotoLibrary::ordersOf(const Items &arranged) const {
  const auto before = namesByFolder(items_);
  Edits edits;
  for (auto &[folder, names] : namesByFolder(arranged))
    if (before.at(folder) != names)
      edits[folder] = [folder, shown = std::move(names)](const Names &order) {
        return PhotoOrder::arranged(order, shown, folder);
      };
  return edits;
}

void PhotoLibrary::sortByDate(Stored stored) {
  scanUnderWay_.cancel();
  Edits edits;
  for (const auto &item : items_)
    edits[item.url.parent_path()] = [](const Names &) { return Names(); };
  rearrange(std::move(edits), std::move(stored));
  setArranged(false);
  scan();
}

void PhotoLibrary::rearrange(Edits edits, Stored stored) {
  auto made = std::make_shared<Rearrangement>();
  queue_.post([this, made, all = std::move(edits), done = std::move(stored)] {
    IOResult<void> result;
    for (const auto &[folder, edit] : all)
      if (auto change = PhotoOrder::edit(folder, edit, files_); !change)
        result = std::unexpected(change.error());
      else if (change->before != change->after)
        made->changes.push_back(std::move(*change));
    tell(done, result);
  });
  rearrangementObservers_.publish(made);
}

void PhotoLibrary::tell(const Stored &stored, const IOResult<void> &result) {
  if (stored)
    mainQueue_.post(lifetime_.guard([stored, result] { stored(result); }));
}

void PhotoLibrary::undo(const RearrangementRef &what, Stored stored) {
  scanUnderWay_.cancel();
  queue_.post([this, what, done = std::move(stored)] {
    IOResult<void> result;
    std::erase_if(what->changes, [&](const PhotoOrder::Change &change) {
      const auto undone = PhotoOrder::edit(
          change.folder, [&](const Names &order) { return PhotoOrder::undone(order, change); }, files_);
      if (!undone)
        result = std::unexpected(undone.error());
      return undone.has_value();
    });
    tell(done, result);
  });
  scan();
}

void PhotoLibrary::placeFirst(const fs::path &file) {
  {
    const Locked locked(arrivalsLock_);
    arrivals_.push_back(file);
    if (arrivals_.size() > 1)
      return; // the waiting edit includes it
  }
  queue_.post([this] { placeArrivals(); });
}

void PhotoLibrary::placeArrivals() {
  std::vector<fs::path> arrivals;
  {
    const Locked locked(arrivalsLock_);
    arrivals.swap(arrivals_);
  }
  std::map<fs::path, Names> added;
  for (const auto &file : arrivals)
    added[file.parent_path()].push_back(file.filename().string());
  for (const auto &[folder, names] : added)
    std::ignore = PhotoOrder::edit(
        folder, [&](Names order) { return PhotoOrder::withNew(std::move(order), names, folder); }, files_);
}

void PhotoLibrary::noteRestored(std::span<const Renaming> restored) {
  std::map<fs::path, std::vector<std::pair<std::string, std::string>>> names;
  for (const auto &[from, to] : restored)
    names[to.parent_path()].emplace_back(from.filename().string(), to.filename().string());
  Edits edits;
  for (auto &[folder, renamed] : names)
    edits[folder] = [renamings = std::move(renamed)](Names order) {
      for (const auto &[from, to] : renamings)
        order = PhotoOrder::withRestored(std::move(order), from, to);
      return order;
    };
  editOrders(std::move(edits));
}

// Makes edits that follow from other changes; observers are not notified.
void PhotoLibrary::editOrders(Edits edits) {
  queue_.post([this, all = std::move(edits)] {
    for (const auto &[folder, edit] : all)
      std::ignore = PhotoOrder::edit(folder, edit, files_);
  });
}

} // namespace fennick

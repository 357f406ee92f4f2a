#include "FennickCore/Storage/PhotoLibrary.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

// The part of PhotoLibrary that edits order files.
namespace fennick {

namespace fs = std::filesystem;

namespace {

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

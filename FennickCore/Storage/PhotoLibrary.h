#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Storage/FolderWatcher.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/PhotoOrder.h"
#include "FennickCore/Storage/PhotoScan.h"
#include "FennickCore/Storage/PictureSizes.h"
#include "FennickCore/Support/Observers.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace fennick {

// The photos and videos of the save folder for the photo wall, newest first unless the user has arranged
// them, kept up to date with all changes in the folder. Makes all edits of order files one after another,
// including those of folders that it does not show. Main thread, except where noted; folders, pictures and
// order files are read and written on a thread of its own.
class PhotoLibrary {
public:
  using Items = std::vector<PhotoItem>;
  using Paths = std::set<std::filesystem::path>;

  static constexpr std::size_t kLimit = 500;

  // One change of custom orders, for `undo`. Its content belongs to the library's thread.
  struct Rearrangement {
    std::vector<PhotoOrder::Change> changes;
  };
  using RearrangementRef = std::shared_ptr<Rearrangement>;
  // Called on the main thread when order files are stored or could not be; may be empty.
  using Stored = std::function<void(const IOResult<void> &)>;

  // Shows at most `limit` items. `files`, `decoder` and `mainQueue` outlive the library.
  PhotoLibrary(FileSystem &files, PictureDecoder &decoder, MainQueue &mainQueue, std::size_t limit = kLimit);
  // Waits for the picture that is being read and until changed orders are stored.
  ~PhotoLibrary();

  [[nodiscard]] const Items &items() const { return items_; }
  [[nodiscard]] const std::optional<std::filesystem::path> &folder() const { return folder_; }
  // Returns whether the folder was scanned since it was set. Until then an empty list means nothing.
  [[nodiscard]] bool isListed() const { return listed_; }
  // Returns whether a folder whose photos are shown has a custom order.
  [[nodiscard]] bool isArranged() const { return arranged_; }
  // Files that arrived within the last 1.5 seconds, for a short highlight.
  [[nodiscard]] const Paths &recentlyAdded() const { return recentlyAdded_; }

  // `observer` is called on the main thread after each change with the new value, not for the current one.
  [[nodiscard]] Subscription observeItems(std::function<void(const Items &)> observer);
  // Called after the list was published.
  [[nodiscard]] Subscription observeListed(std::function<void(const bool &)> observer);
  [[nodiscard]] Subscription observeRecentlyAdded(std::function<void(const Paths &)> observer);
  [[nodiscard]] Subscription observeArranged(std::function<void(const bool &)> observer);
  // Called by `reorder` and `sortByDate` before they return.
  [[nodiscard]] Subscription observeRearrangements(std::function<void(const RearrangementRef &)> observer);
  // Called with files that were removed or renamed, or have left the list and may still exist.
  [[nodiscard]] Subscription observeGone(std::function<void(const Paths &)> observer);

  // Sets the folder, or none. The list is empty until the folder has been scanned.
  void setFolder(std::optional<std::filesystem::path> folder);
  // Scans the folder again. A request during a scan causes one more scan.
  void scan();
  // Puts a saved file at the front of the list. Ignores files that are not photos or videos, or lie
  // elsewhere.
  void noteAdded(const std::filesystem::path &file);

  // Puts a received file first in the custom order of its folder, if there is one. Call it once the file has
  // its final name. Files received in a burst share one edit. Any thread.
  void placeFirst(const std::filesystem::path &file);
  // Gives photos that were restored from the trash their place in the custom order again. Each renaming leads
  // from the old path to the current one.
  void noteRestored(std::span<const Renaming> restored);

  // Removes files from the list after they were deleted or moved. Files that are not listed are skipped.
  void remove(std::span<const std::filesystem::path> files);
  // Renames files in the list. A renamed file keeps its place in the custom order of its folder.
  void rename(std::span<const Renaming> renamings);
  // Arranges the list like `files`; other items follow. The order is stored for each folder separately, so
  // that photos of several folders keep the places that their folder has by date.
  void reorder(const std::vector<std::filesystem::path> &files, Stored stored = {});
  // Removes the custom orders of the folders whose photos are shown.
  void sortByDate(Stored stored = {});
  // Restores the orders as they were before a change. What could not be stored remains in `what`.
  void undo(const RearrangementRef &what, Stored stored = {});

private:
  using Names = PhotoOrder::Names;
  using Edits = std::map<std::filesystem::path, PhotoOrder::Edit>; // by folder

  void finishScan(const Lifetime::Token &current, std::optional<PhotoScan::Listing> found, bool wasBusy);
  void rescanSoon();
  void insert(PhotoItem item);
  void highlight(const std::filesystem::path &file);
  void publish(Items items);
  void publishGone(const Items &before) const;
  void setArranged(bool arranged);
  void editOrders(Edits edits);
  void placeArrivals();
  void rearrange(Edits edits, Stored stored);
  void tell(const Stored &stored, const IOResult<void> &result);
  [[nodiscard]] Edits ordersOf(const Items &arranged) const;

  FileSystem &files_;
  MainQueue &mainQueue_;
  const std::size_t limit_;
  Lifetime lifetime_;

  Items items_;
  std::optional<std::filesystem::path> folder_;
  Paths recentlyAdded_;
  std::map<std::filesystem::path, std::uint64_t> highlights_; // the latest highlight of each file
  ObserverList<Items> itemsObservers_;
  ObserverList<bool> listedObservers_;
  ObserverList<Paths> recentlyAddedObservers_;
  ObserverList<bool> arrangedObservers_;
  ObserverList<RearrangementRef> rearrangementObservers_;
  ObserverList<Paths> goneObservers_;

  Mutex arrivalsLock_;
  std::vector<std::filesystem::path> arrivals_ GUARDED_BY(arrivalsLock_); // that wait for `placeArrivals`

  bool listed_ = false;
  bool arranged_ = false;
  bool scanning_ = false;
  bool scanAgain_ = false;
  std::uint64_t lastHighlight_ = 0;
  int postponed_ = 0;      // how often the pending rescan was put off
  Lifetime pendingRescan_; // cancelled when another rescan takes its place
  Lifetime scanUnderWay_;  // cancelled by every change that outdates its result

  PictureSizes sizes_; // for the queue's thread only
  std::unique_ptr<FolderWatcher> watcher_;
  SerialQueue queue_{"fennick.library"}; // last: what runs on it uses all of the above
};

} // namespace fennick

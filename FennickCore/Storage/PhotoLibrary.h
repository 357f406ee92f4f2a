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

// What the photo wall shows: the photos and videos of the save folder, newest first unless the user has
// arranged them, kept up to date with whatever happens in the folder. It also makes all edits of order files,
// including those of folders that it does not show, one after another. Main thread, except where noted; it
// looks at the folder and at pictures, and edits order files, on a thread of its own.
class PhotoLibrary {
public:
  using Items = std::vector<PhotoItem>;
  using Paths = std::set<std::filesystem::path>;

  static constexpr std::size_t kLimit = 500;

  // One change of custom orders, for `undo`. What is in it belongs to the library's thread.
  struct Rearrangement {
    std::vector<PhotoOrder::Change> changes;
  };
  using RearrangementRef = std::shared_ptr<Rearrangement>;
  // Called on the main thread once order files are stored, or could not be; may be empty.
  using Stored = std::function<void(const IOResult<void> &)>;

  // Shows at most `limit` items. `files`, `decoder` and `mainQueue` outlive the library.
  PhotoLibrary(FileSystem &files, PictureDecoder &decoder, MainQueue &mainQueue, std::size_t limit = kLimit);
  // Waits for the picture that is being looked at, and until the orders that were changed are stored.
  ~PhotoLibrary();

  [[nodiscard]] const Items &items() const { return items_; }
  [[nodiscard]] const std::optional<std::filesystem::path> &folder() const { return folder_; }
  // Whether the folder has been looked through since it was set: before, an empty list says nothing.
  [[nodiscard]] bool isListed() const { return listed_; }
  // Whether a folder whose photos are shown has a custom order.
  [[nodiscard]] bool isArranged() const { return arranged_; }
  // Files that arrived within the last 1.5 seconds, for a short highlight.
  [[nodiscard]] const Paths &recentlyAdded() const { return recentlyAdded_; }

  // `observer` is called on the main thread after each change, with the new value; not for the present one.
  [[nodiscard]] Subscription observeItems(std::function<void(const Items &)> observer);
  // Called after the list itself has been published.
  [[nodiscard]] Subscription observeListed(std::function<void(const bool &)> observer);
  [[nodiscard]] Subscription observeRecentlyAdded(std::function<void(const Paths &)> observer);
  [[nodiscard]] Subscription observeArranged(std::function<void(const bool &)> observer);
  // Called by `reorder` and `sortByDate` before they return.
  [[nodiscard]] Subscription observeRearrangements(std::function<void(const RearrangementRef &)> observer);
  // Told of files that were removed or renamed, or have left the list: those may still be there.
  [[nodiscard]] Subscription observeGone(std::function<void(const Paths &)> observer);

  // Points the library at a folder, or at none: the list is empty until the folder has been looked through.
  void setFolder(std::optional<std::filesystem::path> folder);
  // Looks through the folder again. Asked for while it is being looked through, it is done once more.
  void scan();
  // A file was saved: it comes to the front. Nothing happens for one that is no photo or video, or lies
  // elsewhere.
  void noteAdded(const std::filesystem::path &file);

  // Puts a received file first in the custom order of its folder, if there is one. Call it once the file has
  // its final name. Files received in a burst share one edit. Any thread.
  void placeFirst(const std::filesystem::path &file);
  // Photos were taken back out of the trash: from where they had been to where they are. They get their place
  // in the custom order again.
  void noteRestored(std::span<const Renaming> restored);

  // What was done to files, for the list to follow at once. Others than listed ones are passed over.
  void remove(std::span<const std::filesystem::path> files);
  // A renamed file keeps its place in the order that the user gave its folder.
  void rename(std::span<const Renaming> renamings);
  // Arranges the list like `files`; items that are not among them follow. The order is stored for each folder
  // on its own, so that photos of several folders keep the places that their folder has by date.
  void reorder(const std::vector<std::filesystem::path> &files, Stored stored = {});
  // Removes the custom orders of the folders whose photos are shown.
  void sortByDate(Stored stored = {});
  // Restores the orders as they were before a change. What cannot be stored remains in `what`.
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
  std::map<std::filesystem::path, std::uint64_t> highlights_; // the latest one of each file
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

  PictureSizes sizes_; // of the queue's thread
  std::unique_ptr<FolderWatcher> watcher_;
  SerialQueue queue_{"fennick.library"}; // last: what runs on it uses all of the above
};

} // namespace fennick

#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Upload/Gallery.h"
#include "FennickCore/Upload/IncomingFolder.h"
#include "FennickCore/Upload/PendingRecord.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace fennick {

// Keeps account of received photos from just before they appear under their names until their processing is
// over, and of those that keep private data which should have been removed. What the current options may
// change is also recorded in the save folder's work folder, so that a later run, or another program that
// serves the folder, knows of it. With default options nothing is recorded for JPEG, PNG, HEIC and videos.
//
// As a gallery filter it hides, while location or all metadata is to be removed, received photos from which
// that was not yet removed or could not be; all photos while the records cannot be listed. With other options
// it hides nothing and looks at no file.
//
// Any thread; guarded by its own lock. An entry is named by its record's file name.
class PendingPhotos final : public GalleryFilter {
public:
  // An upload whose body is on the disk.
  struct Arriving {
    UploadRecord upload; // without its path
    std::filesystem::path partFile;
    IncomingHold hold; // on the work folder; kept until the processing is over
  };

  // An upload on its way to its final name. Unless completed, its entry ends with it.
  class Arrival {
  public:
    Arrival(PendingPhotos &pending, Arriving arriving);
    ~Arrival();
    Arrival(const Arrival &) = delete;
    Arrival &operator=(const Arrival &) = delete;

    // The file is about to appear as `file`. Fails if private data has to be removed and that cannot be
    // recorded: the file must not appear then.
    IOResult<void> willAppear(const std::filesystem::path &file);
    // The file has appeared. Returns the entry's name.
    std::string complete();

  private:
    PendingPhotos &pending_;
    Arriving arriving_;
    std::string entry_;
    bool completed_ = false;
  };

  // What to do with one photo.
  struct Work {
    UploadRecord upload; // with the path at which the photo is now
    ImagingOptions options;
    // An earlier run was ended after it had moved this encoding into place.
    std::optional<PendingPlacing> placed{};
  };

  explicit PendingPhotos(FileSystem &files) : files_(files) {} // `files` outlives the object

  // The save folder whose records are read.
  void setFolder(const std::filesystem::path &saveFolder);
  // From now on photos are processed with these options. Returns whether they are others than before: then
  // `follow` records the waiting photos that they may change and the former ones did not. Looks at no file.
  bool setOptions(const ImagingOptions &options);

  // Takes over the photos that an earlier run left, in the order of their arrival; none while anybody works
  // in the folder. On a drive that other computers may use, whose work cannot be seen, only the first time
  // finds any. Each of them is to be processed by the caller.
  [[nodiscard]] std::vector<std::string> takeOver();
  // The same for who knows that nobody works in `incoming`, as IncomingFolder::TakeOver does.
  [[nodiscard]] std::vector<std::string> takeOver(const std::filesystem::path &incoming,
                                                  const IncomingHold &hold);

  // The processing of an entry begins, or is begun again. Returns nullopt if there is no such entry.
  [[nodiscard]] std::optional<Work> begin(const std::string &entry);
  // Records that an encoding of the photo, which may have `remaining`, is about to be moved.
  [[nodiscard]] IOResult<void> willPlace(const std::string &entry, const std::filesystem::path &output,
                                         const std::filesystem::path &target, PrivateData remaining);
  void didNotPlace(const std::string &entry);
  // The photo is `file` now and may have `remaining` although `removed` was to be removed. False if options
  // have changed so that it has to be processed again.
  [[nodiscard]] bool finish(const std::string &entry, const std::filesystem::path &file,
                            PrivateData remaining, PrivateData removed);
  // The photo could not be processed now: a later run does it.
  void postpone(const std::string &entry);
  // Whether a later run would process it.
  [[nodiscard]] bool isRecorded(const std::string &entry);

  // Records the waiting photos that need a record by now, and finds the recorded ones again after changes in
  // the folder. Looks at the file system and waits for the disk.
  void follow();

  bool isActive(const std::filesystem::path &folder) override;
  bool hides(const std::filesystem::path &file, const FileStatus *status) override;

private:
  enum class Phase : std::uint8_t {
    arriving, // the file may not be there yet
    waiting,  // for this program
    working,
    postponed, // until a later run
    others,    // this program has nothing to do with it: only its record says what it is
  };
  struct Entry {
    PendingRecord record;
    Phase phase = Phase::others;
    bool recorded = false;
    bool missing = false; // the photo was not found anywhere; it may come back under any name
    IncomingHold hold{};
    std::optional<FileStatus> file{}; // of the record, when it was read
  };
  using Entries = std::map<std::string, Entry>;
  // Size and modification time. Not the inode, which FAT drives number anew at any time.
  using Key = std::pair<std::int64_t, Instant>;

  // Both return the entry as it is then, or nullopt if there is none.
  [[nodiscard]] std::optional<Entry> entryOf(const std::string &name);
  template <typename Change>
  std::optional<Entry> update(const std::string &name, Change change);

  IOResult<void> announce(const std::string &name, const std::filesystem::path &file);
  void giveUp(const std::string &name, const std::filesystem::path &partFile);
  IOResult<void> record(const std::string &name);
  void forget(const std::string &name);
  void relocate(const std::string &name, const Entry &before,
                const std::optional<std::filesystem::path> &found);
  void locate(const Entries &lost);
  void recordUnrecorded();
  [[nodiscard]] bool isToBeRecorded(const Entry &entry) const REQUIRES(lock_);

  // About records that somebody else wrote.
  void readOthers() REQUIRES(lock_);
  void readRecord(const FolderEntry &file) REQUIRES(lock_);
  void forgetOld();
  [[nodiscard]] Entries waitingOthers() REQUIRES(lock_);

  void makeIndex() REQUIRES(lock_);
  [[nodiscard]] bool isHidden(const Entry &entry) const REQUIRES(lock_);

  FileSystem &files_;
  Mutex lock_;
  std::filesystem::path folder_ GUARDED_BY(lock_);
  ImagingOptions options_ GUARDED_BY(lock_);
  Entries entries_ GUARDED_BY(lock_);
  // The state of the work folder when its records were last read, and whether a later change must show in it.
  std::optional<FileStatus> lastRead_ GUARDED_BY(lock_);
  bool settled_ GUARDED_BY(lock_) = false;
  bool readable_ GUARDED_BY(lock_) = true; // otherwise any photo may be one that must not be shown
  std::set<std::filesystem::path> seen_ GUARDED_BY(lock_); // folders that were taken over once
  // Of the entries that are hidden.
  bool indexed_ GUARDED_BY(lock_) = false;
  std::unordered_set<std::string> hiddenPaths_ GUARDED_BY(lock_);
  std::set<Key> hiddenPhotos_ GUARDED_BY(lock_);
};

} // namespace fennick

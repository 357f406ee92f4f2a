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

// Tracks received photos from just before they appear under their names until their processing is over, and
// photos that still contain private data which should have been removed. What the current options may change
// is also recorded in the work folder inside the save folder, so that a later run, or another program that
// serves the folder, knows of it. With default options nothing is recorded for JPEG, PNG, HEIC and videos.
//
// As a gallery filter it hides, while location or all metadata is to be removed, received photos from which
// that was not yet removed or could not be; it hides all photos while the records cannot be listed. With
// other options it hides nothing and reads no file.
//
// Any thread; guarded by its own lock. The name of an entry is its record's file name.
class PendingPhotos final : public GalleryFilter {
public:
  // An upload whose body is on the disk.
  struct Arriving {
    UploadRecord upload; // its path is not set yet
    std::filesystem::path partFile;
    IncomingHold hold; // on the work folder; kept until the processing ends
  };

  // An upload that is being moved to its final name. Unless `complete` is called, its entry ends with the
  // object.
  class Arrival {
  public:
    Arrival(PendingPhotos &pending, Arriving arriving);
    ~Arrival();
    Arrival(const Arrival &) = delete;
    Arrival &operator=(const Arrival &) = delete;

    // Announces that the file is about to appear as `file`. Fails if private data has to be removed and that
    // cannot be recorded: the file must not appear then.
    IOResult<void> willAppear(const std::filesystem::path &file);
    // Records that the file has appeared. Returns the entry's name.
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
    // Set if an earlier run crashed after it had moved this encoding into place.
    std::optional<PendingPlacing> placed{};
  };

  explicit PendingPhotos(FileSystem &files) : files_(files) {} // `files` outlives the object

  // The save folder whose records are read.
  void setFolder(const std::filesystem::path &saveFolder);
  // Sets the options for photos from now on. Returns whether they changed: then `follow` records the waiting
  // photos that only the new options may change. Reads no file.
  bool setOptions(const ImagingOptions &options);

  // Takes over the photos that an earlier run left, in the order of their arrival; none while anybody works
  // in the folder. On a drive shared with other computers, only the first call finds any. The caller
  // processes each of them.
  [[nodiscard]] std::vector<std::string> takeOver();
  // The same for a caller that knows that nobody works in `incoming`, as IncomingFolder::TakeOver does.
  [[nodiscard]] std::vector<std::string> takeOver(const std::filesystem::path &incoming,
                                                  const IncomingHold &hold);

  // Begins the processing of an entry, or begins it again. Returns nullopt if there is no such entry.
  [[nodiscard]] std::optional<Work> begin(const std::string &entry);
  // Records that an encoding of the photo, which may still contain `remaining`, is about to be moved.
  [[nodiscard]] IOResult<void> willPlace(const std::string &entry, const std::filesystem::path &output,
                                         const std::filesystem::path &target, PrivateData remaining);
  void didNotPlace(const std::string &entry);
  // Records that the photo is now `file` and may contain `remaining` although `removed` was to be removed.
  // Returns false if the options have changed so that it has to be processed again.
  [[nodiscard]] bool finish(const std::string &entry, const std::filesystem::path &file,
                            PrivateData remaining, PrivateData removed);
  // Leaves a photo that cannot be processed now to a later run.
  void postpone(const std::string &entry);
  // Returns whether a later run would process the photo.
  [[nodiscard]] bool isRecorded(const std::string &entry);

  // Records the waiting photos that need a record now, and finds the recorded ones again after changes in the
  // folder. Reads the file system and waits for the disk.
  void follow();

  bool isActive(const std::filesystem::path &folder) override;
  bool hides(const std::filesystem::path &file, const FileStatus *status) override;

private:
  enum class Phase : std::uint8_t {
    arriving, // the file may not exist yet
    waiting,  // for this program
    working,
    postponed, // left to a later run
    others,    // this program has nothing to do with it: only its record says what it is
  };
  struct Entry {
    PendingRecord record;
    Phase phase = Phase::others;
    bool recorded = false;
    bool missing = false; // the photo was not found; it may come back under any name
    IncomingHold hold{};
    std::optional<FileStatus> file{}; // status of the record when it was read
  };
  using Entries = std::map<std::string, Entry>;
  // Size and modification time. Not the inode, since FAT drives may renumber files at any time.
  using Key = std::pair<std::int64_t, Instant>;

  // Both return a copy of the entry, or nullopt if there is none.
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

  // Records of other programs.
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
  // The status of the work folder when its records were read last, and whether a later change must be visible
  // in it.
  std::optional<FileStatus> lastRead_ GUARDED_BY(lock_);
  bool readIsFinal_ GUARDED_BY(lock_) = false;
  bool readable_ GUARDED_BY(lock_) = true;                 // if not, any photo may be one that must be hidden
  std::set<std::filesystem::path> seen_ GUARDED_BY(lock_); // folders taken over once
  // The hidden entries by size and time.
  bool indexed_ GUARDED_BY(lock_) = false;
  std::unordered_set<std::string> hiddenPaths_ GUARDED_BY(lock_);
  std::set<Key> hiddenPhotos_ GUARDED_BY(lock_);
};

} // namespace fennick

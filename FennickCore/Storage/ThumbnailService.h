#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Storage/MemoryCache.h"
#include "FennickCore/Storage/ThumbnailStore.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace fennick {

// Makes small JPEGs of saved pictures and keeps them in memory (64 MiB), and on the disk across runs. Any
// thread; guarded by its own lock.
class ThumbnailService {
public:
  using Data = MemoryCache::Data; // shared by all callers; never changed, never null
  enum class Missing : std::uint8_t {
    noPicture, // the file is not a picture, or cannot be read
    busy       // no decoder became free in time; ask again later
  };
  using Result = std::expected<Data, Missing>;
  // Who waits for a thumbnail: a phone, a window of this program, or nobody yet.
  enum class Asker : std::uint8_t { phone, window, nobody };

  // Makes pictures of at most `maxPixel` on the longer side, at most `concurrency` at once; further callers
  // wait. While phones and windows both wait, the group with fewer running renders is served first; a group
  // without a running render does not wait for the other and may exceed the limit by one. Thumbnails that
  // nobody waits for are made one at a time while neither phones nor windows wait. Creates `cacheDir`; if
  // that fails, nothing is kept on the disk. `grown` is called on a caller's thread whenever 16 MiB more were
  // stored. `files` and `decoder` outlive the object.
  ThumbnailService(
      FileSystem &files, const std::filesystem::path &cacheDir, std::int64_t maxPixel, int concurrency,
      PictureDecoder &decoder, std::function<void()> grown = [] {});

  // Returns the thumbnail and blocks while it is made. A picture that cannot be read is tried once, or twice
  // if the decoder crashed or timed out. A changed picture is rendered again.
  [[nodiscard]] Result thumbnail(const std::filesystem::path &file, Asker asker = Asker::window);

  // Returns the thumbnail, or the fact that there is none, if that is known without rendering. Reads the
  // disk.
  [[nodiscard]] std::optional<Result> known(const std::filesystem::path &file);

  // Forgets all thumbnails, including those on the disk.
  void clear();

  [[nodiscard]] const ThumbnailStore &store() const { return store_; }

private:
  // A picture that is being rendered, shared by all waiting callers.
  struct Rendering {
    bool isDone = false;
    Result result = std::unexpected(Missing::noPicture);
  };
  class Turn;
  class Place;

  [[nodiscard]] std::string keyOf(const std::filesystem::path &file, const FileStatus &status) const;
  [[nodiscard]] Result make(const std::filesystem::path &file, const FileStatus &status,
                            const std::string &key, Asker asker);
  [[nodiscard]] bool isLasting(PictureFault fault, const std::string &key);
  [[nodiscard]] bool mayBegin(Asker asker) const REQUIRES(lock_);
  [[nodiscard]] PictureResult<std::string> render(const std::filesystem::path &file, Asker asker);
  void store(const std::filesystem::path &file, const FileStatus &status, const std::string &data);

  // The renders of one group of callers.
  struct Renders {
    int underWay = 0;
    int waiting = 0;
  };

  const ThumbnailStore store_;
  const std::int64_t maxPixel_;
  const int concurrency_;
  PictureDecoder &decoder_;
  const std::function<void()> grown_;
  mutable Mutex lock_;
  std::condition_variable changed_;
  MemoryCache memory_ GUARDED_BY(lock_);
  MemoryCache crashedKeys_ GUARDED_BY(lock_); // keys whose rendering ended a decoder; without data
  std::map<std::string, std::shared_ptr<Rendering>> underWay_ GUARDED_BY(lock_); // by key
  std::array<Renders, 3> renders_ GUARDED_BY(lock_);                             // by asker
  std::int64_t newBytes_ GUARDED_BY(lock_) = 0; // stored since `grown_` was called last
};

} // namespace fennick

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

// Small JPEGs of saved pictures, each made once: kept in memory (64 MiB), and on the disk across runs. Any
// thread; guarded by its own lock.
class ThumbnailService {
public:
  using Data = MemoryCache::Data; // shared by all who asked; never changed, never null
  enum class Missing : std::uint8_t {
    noPicture, // the file is no picture, or one that cannot be read
    busy       // no decoder became free in time; ask again later
  };
  using Result = std::expected<Data, Missing>;
  // Who waits for it: a phone, a window of this program, or nobody yet.
  enum class Asker : std::uint8_t { phone, window, nobody };

  // Pictures of at most `maxPixel` on the longer side, at most `concurrency` made at once; whoever asks for
  // one more waits. While phones and windows both wait, whoever has fewer under way is served first; one that
  // has none under way does not wait for the other, and may make one more. What nobody waits for yet is made
  // one at a time while neither phones nor windows wait. `cacheDir` is made here; without it nothing is kept
  // on the disk. `grown` is called whenever 16 MiB more were stored, on an asker's thread. `files` and
  // `decoder` outlive the object.
  ThumbnailService(
      FileSystem &files, const std::filesystem::path &cacheDir, std::int64_t maxPixel, int concurrency,
      PictureDecoder &decoder, std::function<void()> grown = [] {});

  // A picture that cannot be read is tried once, or twice where the decoder died or took too long. A picture
  // that was changed is made anew. Blocks while it is made.
  [[nodiscard]] Result thumbnail(const std::filesystem::path &file, Asker asker = Asker::window);

  // The thumbnail, or its absence, if that is known without making anything. Reads the disk.
  [[nodiscard]] std::optional<Result> known(const std::filesystem::path &file);

  // Forgets everything, on the disk as well.
  void clear();

  [[nodiscard]] const ThumbnailStore &store() const { return store_; }

private:
  // A picture being made, for all who wait for it.
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

  // Renders of one kind of asker.
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
  MemoryCache endedOver_ GUARDED_BY(lock_); // keys over which a decoder has ended; no data
  std::map<std::string, std::shared_ptr<Rendering>> underWay_ GUARDED_BY(lock_); // by key
  std::array<Renders, 3> renders_ GUARDED_BY(lock_);                             // by asker
  std::int64_t newBytes_ GUARDED_BY(lock_) = 0; // stored since `grown_` was called
};

} // namespace fennick

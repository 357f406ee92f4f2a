#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/FileStatus.h"
#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/Mutex.h"
#include "FennickCore/Storage/MemoryCache.h"

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace fennick {

// Small JPEGs of saved pictures, each made once: kept in memory (64 MiB), and on the disk across runs. Any
// thread; guarded by its own lock.
class ThumbnailService {
public:
  using Data = MemoryCache::Data; // shared by all who asked; never changed

  // Pictures of at most `maxPixel` on the longer side, at most `concurrency` made at once; whoever asks for
  // one more waits. `cacheDir` is made here; without it nothing is kept on the disk. Objects for the same
  // `maxPixel` may share one: the gallery and the photo wall do. `files` and `decoder` outlive the object.
  ThumbnailService(FileSystem &files, std::filesystem::path cacheDir, std::int64_t maxPixel, int concurrency,
                   PictureDecoder &decoder);

  // Null for what is no picture, or one that cannot be read; that is tried once, or twice where the decoder
  // died or took too long. A picture that was changed is made anew. Blocks while it is made.
  [[nodiscard]] Data thumbnail(const std::filesystem::path &file);

  // Forgets everything, on the disk as well; others that share the folder make anew what they ask it for.
  void clear();

private:
  // A picture being made, for all who wait for it.
  struct Rendering {
    bool isDone = false;
    Data data;
  };
  class Turn;
  class Place;

  [[nodiscard]] std::string keyOf(const std::filesystem::path &file, const FileStatus &status) const;
  [[nodiscard]] Data make(const std::filesystem::path &file, const FileStatus &status,
                          const std::string &key);
  [[nodiscard]] bool isLasting(PictureFault fault, const std::string &key);
  [[nodiscard]] PictureResult<std::string> render(const std::filesystem::path &file);
  void store(const std::string &key, const std::string &data);
  [[nodiscard]] std::filesystem::path diskFile(const std::string &key) const;

  FileSystem &files_;
  const std::filesystem::path cacheDir_;
  const std::int64_t maxPixel_;
  PictureDecoder &decoder_;
  Mutex lock_;
  std::condition_variable changed_;
  MemoryCache memory_ GUARDED_BY(lock_);
  MemoryCache endedOver_ GUARDED_BY(lock_); // keys over which a decoder has ended; no data
  std::map<std::string, std::shared_ptr<Rendering>> underWay_ GUARDED_BY(lock_); // by key
  int gate_ GUARDED_BY(lock_);                                                   // renders that may begin
};

} // namespace fennick

#pragma once

#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/HTTP/HTTPResponse.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Storage/Thumbnails.h"

#include <filesystem>

namespace fennick {

// Answers requests for thumbnails ("/thumb/NAME"). Requests for thumbnails that do not exist yet wait for
// them; only a limited number may wait at once, so that they do not take all connections of the server. Any
// thread; guarded by its own lock.
class GalleryThumbnails {
public:
  // Most requests that may wait for thumbnails, of the server's 64 connections.
  static constexpr int kMostWaiting = 24;

  // `thumbnails` outlives the object. If it is null there are no thumbnails.
  explicit GalleryThumbnails(Thumbnails *thumbnails) : thumbnails_(thumbnails) {}

  // Returns the thumbnail of `file` in the size that the parameter "s" requests. A request with the version
  // "v" may cache the picture if that is the file's current version, and receives 503 instead of 404 if it
  // should try again later.
  [[nodiscard]] HTTPResponse answer(const std::filesystem::path &file, const HTTPRequestHead &head);

private:
  class Waiting;
  [[nodiscard]] ThumbnailService::Result thumbnail(ThumbnailService &service,
                                                   const std::filesystem::path &file);

  Thumbnails *const thumbnails_;
  Mutex lock_;
  int waiting_ GUARDED_BY(lock_) = 0;
};

} // namespace fennick

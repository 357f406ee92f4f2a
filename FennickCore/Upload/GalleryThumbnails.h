#pragma once

#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/HTTP/HTTPResponse.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Storage/Thumbnails.h"

#include <filesystem>

namespace fennick {

// Answers requests for thumbnails ("/thumb/NAME"). Requests whose thumbnail has yet to be made wait for it;
// so that they do not hold all connections of the server, only some may wait at once. Any thread; guarded by
// its own lock.
class GalleryThumbnails {
public:
  // Most requests that wait for thumbnails to be made, of the server's 64 connections.
  static constexpr int kMostWaiting = 24;

  // `thumbnails` outlives the object; without it (null) there are none.
  explicit GalleryThumbnails(Thumbnails *thumbnails) : thumbnails_(thumbnails) {}

  // The thumbnail of `file`, in the size that "s" asks for. A request with "v" is told to keep the picture if
  // that is the file's present version, and hears 503 instead of 404 if it should ask again later.
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

#include "FennickCore/Upload/GalleryThumbnails.h"

#include "FennickCore/Upload/Gallery.h"

#include <string>
#include <utility>

namespace fennick {

namespace {

constexpr const char *kTenMinutes = "private, max-age=600";
constexpr const char *kForGood =
    "private, max-age=31536000, immutable"; // one year: the URL contains the version

HTTPResponse busy() {
  HTTPResponse response = HTTPResponse::text(503, "busy");
  response.headers.emplace_back("Retry-After", "1");
  return response;
}

} // namespace

// One of the places for waiting requests; empty if all are taken.
class GalleryThumbnails::Waiting {
public:
  explicit Waiting(GalleryThumbnails &owner) : owner_(owner) {
    const Locked locked(owner_.lock_);
    isGranted_ = owner_.waiting_ < kMostWaiting;
    owner_.waiting_ += isGranted_ ? 1 : 0;
  }
  ~Waiting() {
    const Locked locked(owner_.lock_);
    owner_.waiting_ -= isGranted_ ? 1 : 0;
  }
  Waiting(const Waiting &) = delete;
  Waiting &operator=(const Waiting &) = delete;
  [[nodiscard]] bool isGranted() const { return isGranted_; }

private:
  GalleryThumbnails &owner_;
  bool isGranted_ = false;
};

HTTPResponse GalleryThumbnails::answer(const std::filesystem::path &file, const HTTPRequestHead &head) {
  if (thumbnails_ == nullptr)
    return HTTPResponse::notFound();
  const auto size = head.query.find("s");
  const bool isLarge = size != head.query.end() && size->second == "large";
  const auto version = head.query.find("v");
  const bool hasVersion = version != head.query.end();
  // Checked before the picture is read: a picture that is replaced meanwhile must not be cached as the old
  // version.
  const bool isCurrent = hasVersion && version->second == galleryVersion(file);

  auto data = thumbnail(isLarge ? thumbnails_->large() : thumbnails_->small(), file);
  if (!data)
    return hasVersion && data.error() == ThumbnailService::Missing::busy ? busy() : HTTPResponse::notFound();
  HTTPResponse response;
  response.headers = {{"Content-Type", "image/jpeg"},
                      {"X-Content-Type-Options", "nosniff"},
                      {"Cache-Control", !hasVersion                                            ? kTenMinutes
                                        : isCurrent && galleryVersion(file) == version->second ? kForGood
                                                                                               : "no-store"}};
  response.sharedBody = std::move(*data);
  return response;
}

ThumbnailService::Result GalleryThumbnails::thumbnail(ThumbnailService &service,
                                                      const std::filesystem::path &file) {
  if (auto known = service.known(file))
    return std::move(*known);
  const Waiting waiting(*this);
  if (!waiting.isGranted())
    return std::unexpected(ThumbnailService::Missing::busy);
  return service.thumbnail(file, ThumbnailService::Asker::phone);
}

} // namespace fennick

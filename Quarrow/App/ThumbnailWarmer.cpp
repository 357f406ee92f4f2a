#include "Quarrow/App/ThumbnailWarmer.h"

#include <tuple>
#include <utility>

namespace quarrow {

void ThumbnailWarmer::post(Queue &queue, const char *label, std::function<void()> task) {
  if (stopped_)
    return;
  if (!queue)
    queue = std::make_unique<fennick::SerialQueue>(label);
  queue->post(std::move(task));
}

void ThumbnailWarmer::add(const std::filesystem::path &photo) {
  post(arrivals_, "fennick.warm", [this, photo] {
    make(thumbnails_.small(), photo);
    make(thumbnails_.large(), photo);
  });
}

void ThumbnailWarmer::follow(const std::optional<std::filesystem::path> &folder) {
  if (std::exchange(folder_, folder) == folder)
    return;
  folderWanted_.cancel();
  if (!folder)
    return;
  post(listed_, "fennick.warm.all", [this, folder = *folder, token = folderWanted_.token()] {
    for (const auto &photo : fennick::galleryList(folder, &filter_)) {
      if (stopped_ || token.isCancelled())
        return;
      make(thumbnails_.small(), folder / photo.name);
    }
  });
}

void ThumbnailWarmer::make(fennick::ThumbnailService &service, const std::filesystem::path &photo) {
  if (!stopped_ && !service.known(photo))
    std::ignore = service.thumbnail(photo, fennick::ThumbnailService::Asker::nobody);
}

void ThumbnailWarmer::stop() {
  stopped_ = true;
  arrivals_.reset();
  listed_.reset();
}

} // namespace quarrow

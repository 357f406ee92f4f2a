#include "Quarrow/App/ThumbnailUpkeep.h"

#include "Quarrow/App/SaveFolderDrive.h"

#include <utility>

namespace quarrow {

namespace {

// While photos arrive one after another, the folder and the stored thumbnails are listed at this interval:
// about 30 ms of a thread of its own for ten thousand photos.
constexpr fennick::Seconds kTidyDelay{10};

} // namespace

ThumbnailUpkeep::ThumbnailUpkeep(fennick::Thumbnails &thumbnails, fennick::PhotoLibrary &library,
                                 fennick::MainQueue &mainQueue)
    : thumbnails_(thumbnails), mainQueue_(mainQueue), gone_(library.observeGone([this](const auto &files) {
        thumbnails_.forget({files.begin(), files.end()});
      })) {}

void ThumbnailUpkeep::folderChanged(const std::filesystem::path &folder, const std::filesystem::path &drive) {
  folder_ = folder;
  drive_ = drive;
  if (std::exchange(tidiesSoon_, true))
    return;
  mainQueue_.postAfter(kTidyDelay, lifetime_.guard([this] { tidy(); }));
}

void ThumbnailUpkeep::tidy() {
  tidiesSoon_ = false;
  if (!isUnplugged(folder_, drive_))
    thumbnails_.tidy(folder_);
}

} // namespace quarrow

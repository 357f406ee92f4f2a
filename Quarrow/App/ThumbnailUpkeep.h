#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "FennickCore/Storage/Thumbnails.h"
#include "FennickCore/Support/Observers.h"

#include <filesystem>

namespace quarrow {

// Removes the stored thumbnails of photos that are gone: at once if this program removed or renamed them or
// they left the photo wall, and soon after any change in the save folder otherwise, for example if another
// program deleted them. Main thread.
class ThumbnailUpkeep {
public:
  // All outlive the object.
  ThumbnailUpkeep(fennick::Thumbnails &thumbnails, fennick::PhotoLibrary &library,
                  fennick::MainQueue &mainQueue);

  // Something in the save folder has changed, or it is a new one. A burst of changes causes one scan. Nothing
  // is read if `drive`, on which the folder lies (see SaveFolderDrive.h), is unplugged by then.
  void folderChanged(const std::filesystem::path &folder, const std::filesystem::path &drive);

private:
  void tidy();

  fennick::Thumbnails &thumbnails_;
  fennick::MainQueue &mainQueue_;
  fennick::Lifetime lifetime_;
  std::filesystem::path folder_;
  std::filesystem::path drive_;
  bool tidiesSoon_ = false;
  fennick::Subscription gone_;
};

} // namespace quarrow

#include "FennickCore/Storage/PhotoItem.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/PathComponent.h"

namespace fennick {

bool isVideoName(std::string_view name) {
  const std::string extension = lowerCasedExtension(name);
  return extension == "mov" || extension == "mp4" || extension == "m4v";
}

bool isPhotoFolderName(std::string_view name) {
  return !name.starts_with('.') && name != kOriginalsFolder && name != kExportFolder;
}

} // namespace fennick

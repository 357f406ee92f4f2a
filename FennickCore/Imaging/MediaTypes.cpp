#include "FennickCore/Imaging/MediaTypes.h"

#include "FennickCore/Platform/Files/PathComponent.h"

#include <algorithm>
#include <array>

namespace fennick {

bool isMediaExtension(std::string_view extension) {
  static constexpr std::array<std::string_view, 15> kExtensions{"jpg",  "jpeg", "png", "heic", "heif",
                                                                "hif",  "dng",  "tif", "tiff", "gif",
                                                                "webp", "avif", "mov", "mp4",  "m4v"};
  return std::ranges::find(kExtensions, extension) != kExtensions.end();
}

bool countsAsMedia(std::string_view name, FileKind kind) {
  return kind == FileKind::regular && !name.starts_with('.') && isMediaExtension(lowerCasedExtension(name));
}

} // namespace fennick

#include "FennickCore/Imaging/Picture/RawPicture.h"

#include "FennickCore/Imaging/Picture/Exiv2Versions.h"
#include "FennickCore/Imaging/Picture/MetadataExiv2.h"

#include <algorithm>

namespace fennick::picture {

std::optional<PixelSize> rawSize(Bytes file) {
  return guarded([&]() -> std::optional<PixelSize> {
    const auto image = openedImage(file);
    const PixelSize size{.width = static_cast<std::int64_t>(image->pixelWidth()),
                         .height = static_cast<std::int64_t>(image->pixelHeight())};
    return size.width > 0 && size.height > 0 ? std::optional(size) : std::nullopt;
  });
}

bool findRawPreview(Bytes file, const std::function<bool(const std::string &)> &use) {
  const auto found = guarded([&]() -> std::optional<bool> {
    const auto image = openedImage(file);
    const Exiv2::PreviewManager previews(*image);
    auto largestFirst = previews.getPreviewProperties();
    std::ranges::reverse(largestFirst);
    return std::ranges::any_of(largestFirst, [&](const auto &properties) {
      if (properties.mimeType_ != "image/jpeg")
        return false;
      const auto preview = previews.getPreviewImage(properties);
      return use(std::string(reinterpret_cast<const char *>(preview.pData()), preview.size()));
    });
  });
  return found.value_or(false);
}

} // namespace fennick::picture

#include "FennickCore/Imaging/Picture/RawPicture.h"

#include "FennickCore/Imaging/Picture/MetadataExiv2.h"

#include <exiv2/exiv2.hpp>

#include <algorithm>

namespace fennick::picture {

namespace {

auto opened(Bytes file) {
  auto image = Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte *>(file.data()),
                                         static_cast<long>(file.size()));
  image->readMetadata();
  return image;
}

} // namespace

std::optional<PixelSize> rawSize(Bytes file) {
  return guarded([&]() -> std::optional<PixelSize> {
    const auto image = opened(file);
    if (image->pixelWidth() <= 0 || image->pixelHeight() <= 0)
      return std::nullopt;
    return PixelSize{.width = image->pixelWidth(), .height = image->pixelHeight()};
  });
}

std::optional<std::string> rawPreview(Bytes file) {
  return guarded([&]() -> std::optional<std::string> {
    const auto image = opened(file);
    const Exiv2::PreviewManager previews(*image);
    auto found = previews.getPreviewProperties(); // smallest first
    std::ranges::reverse(found);
    for (const auto &properties : found) {
      if (properties.mimeType_ != "image/jpeg")
        continue;
      const auto preview = previews.getPreviewImage(properties);
      return std::string(reinterpret_cast<const char *>(preview.pData()), preview.size());
    }
    return std::nullopt;
  });
}

} // namespace fennick::picture

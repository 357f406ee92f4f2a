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

bool findRawPreview(Bytes file, const std::function<bool(const std::string &)> &use) {
  const auto found = guarded([&]() -> std::optional<bool> {
    const auto image = opened(file);
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

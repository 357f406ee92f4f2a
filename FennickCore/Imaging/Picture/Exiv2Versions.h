#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <exiv2/exiv2.hpp>

#include <string_view>

// Differences between the versions of Exiv2: 0.27 in Debian 12, 0.28 in Debian 13.
namespace fennick::picture {

#if EXIV2_TEST_VERSION(0, 28, 0)
using Exiv2Size = std::size_t;

// HEIC and AVIF can always be read.
inline void enableHeif() {}

inline std::string_view textOf(const Exiv2::DataBuf &data) {
  return {reinterpret_cast<const char *>(data.c_data()), data.size()};
}
#else
using Exiv2Size = long;

inline void enableHeif() { Exiv2::enableBMFF(); }

inline std::string_view textOf(const Exiv2::DataBuf &data) {
  return {reinterpret_cast<const char *>(data.pData_), static_cast<std::size_t>(data.size_)};
}
#endif

// Opens `file`, which outlives the image, and reads its metadata. Throws Exiv2's errors.
inline auto openedImage(Bytes file) {
  auto image = Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte *>(file.data()),
                                         static_cast<Exiv2Size>(file.size()));
  image->readMetadata();
  return image;
}

} // namespace fennick::picture

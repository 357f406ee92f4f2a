#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/ColourCoding.h"
#include "FennickCore/Imaging/Picture/HeifFile.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

// HEIC, HEIF and AVIF files at the level of boxes, without pixels. Pure functions; any thread.
namespace fennick::picture {

[[nodiscard]] constexpr bool isHeif(PictureType type) {
  return type == PictureType::heic || type == PictureType::heif || type == PictureType::avif;
}

// Returns the orientation that the primary picture's rotation and mirroring amount to; 1 if it has none.
// Returns nullopt if there is no primary picture.
[[nodiscard]] std::optional<std::int64_t> heifOrientation(Bytes bytes);

// Returns whether the file contains a sequence of pictures, with or without a still picture for other
// viewers.
[[nodiscard]] bool heifHasMovie(Bytes bytes);

// Returns the colours that the primary picture states by number, or nullopt if it states none.
[[nodiscard]] std::optional<ColourCoding> heifColours(Bytes bytes);

// The metadata blocks of the primary picture; empty: none.
struct HeifBlocks {
  std::string exif; // a TIFF structure
  std::string xmp;
  std::string icc;
};
[[nodiscard]] HeifBlocks heifBlocks(Bytes bytes);

// Returns the data of an item; empty for nullptr, if it is not in this file, and beyond 16 MB.
[[nodiscard]] std::string heifItemData(std::string_view file, const HeifFile &heif, const HeifItem *item);

// Returns the file with the primary picture, its thumbnails and auxiliary pictures rotated to `orientation`
// by their properties, and EXIF adjusted if it states an orientation.
[[nodiscard]] std::expected<std::string, PictureFault> heifWithOrientation(Bytes bytes,
                                                                           std::int64_t orientation);

} // namespace fennick::picture

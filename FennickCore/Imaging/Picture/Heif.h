#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/ColourCoding.h"
#include "FennickCore/Imaging/Picture/HeifFile.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

// HEIC, HEIF and AVIF files as far as their boxes go: no pixels. Pure functions; any thread.
namespace fennick::picture {

[[nodiscard]] constexpr bool isHeif(PictureType type) {
  return type == PictureType::heic || type == PictureType::heif || type == PictureType::avif;
}

// Which of the eight orientations the primary picture's rotation and mirroring stand for; 1 when it has none.
// Nothing for a file without a primary picture.
[[nodiscard]] std::optional<std::int64_t> heifOrientation(Bytes bytes);

// Whether the file holds a sequence of pictures, with a picture for viewers that show only one or without.
[[nodiscard]] bool heifHasMovie(Bytes bytes);

// The colours that the primary picture states by number; nullopt if it states none.
[[nodiscard]] std::optional<ColourCoding> heifColours(Bytes bytes);

// The blocks that describe the primary picture; empty: none.
struct HeifBlocks {
  std::string exif; // a TIFF structure
  std::string xmp;
  std::string icc;
};
[[nodiscard]] HeifBlocks heifBlocks(Bytes bytes);

// The data of an item; empty for nullptr, and for one that is not in this file or beyond 16 MB.
[[nodiscard]] std::string heifItemData(std::string_view file, const HeifFile &heif, const HeifItem *item);

// The file with the primary picture, its thumbnails and auxiliary pictures turned to `orientation` by their
// properties, and EXIF in step where it states an orientation.
[[nodiscard]] std::expected<std::string, PictureFault> heifWithOrientation(Bytes bytes,
                                                                           std::int64_t orientation);

} // namespace fennick::picture

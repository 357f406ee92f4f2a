#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/ExifTiff.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fennick::picture {

// Returns whether a tag of a first directory describes the storage of pixels or points to another directory.
[[nodiscard]] bool isStructuralTag(std::uint16_t tag);

// An EXIF block that is edited in place: whatever is not changed, including maker notes, keeps its bytes and
// its position. A value; one thread at a time.
class ExifBlock {
public:
  // `block` is a TIFF structure, with or without "Exif\0\0" before it. Returns nullopt if it is not one.
  [[nodiscard]] static std::optional<ExifBlock> parse(std::string_view block);
  // Returns a small block with only the orientation, without "Exif\0\0".
  [[nodiscard]] static std::string minimal(std::uint16_t orientation);

  // The TIFF structure in its current state, without "Exif\0\0".
  [[nodiscard]] const std::string &tiff() const { return data_; }

  // The stated orientation, which may be out of range; nullopt if there is none.
  [[nodiscard]] std::optional<std::int64_t> orientation() const;
  // Sets the orientation in place; a block without one grows at its end. Returns false and changes nothing if
  // that is impossible.
  [[nodiscard]] bool setOrientation(std::uint16_t orientation);
  // Sets the dimensions where the block states them.
  void setPixelDimensions(std::uint32_t width, std::uint32_t height);

  [[nodiscard]] bool hasGPS() const;
  [[nodiscard]] bool hasExif() const;
  // Returns whether the first directory contains anything besides the storage of pixels and pointers to other
  // directories.
  [[nodiscard]] bool hasTIFF() const;
  [[nodiscard]] bool hasThumbnail() const;

  // Removes the GPS directory and overwrites it and all its values with zeros, as well as place names in the
  // notes of two makers, and copies of XMP and IPTC inside the block.
  void removeGPS();
  // Removes the second directory, of the preview, and overwrites it and the preview with zeros; empty space
  // at the end is cut off.
  void removeThumbnail();

private:
  ExifBlock(std::string data, TiffLayout layout) : data_(std::move(data)), layout_(layout) {}

  [[nodiscard]] bool stateOrientation(std::uint16_t orientation);
  // The directories of the chain, and the EXIF and other directories they point to, except GPS.
  [[nodiscard]] std::vector<TiffDirectory> directories() const;
  [[nodiscard]] bool pointAnywhere(std::uint16_t tag) const;
  [[nodiscard]] std::set<std::uint64_t> placesInUse() const;
  void zeroStretch(std::uint64_t at, std::uint64_t length);
  void zeroData(const TiffDirectory &directory, std::uint16_t places, std::uint16_t lengths);
  void zeroWithValues(const TiffDirectory &directory);
  void removeEmbedded(std::size_t owner, std::uint16_t tag);
  void removeGPSOf(std::size_t owner);
  void removeMakersPlaces();
  void dropEmptyEnd();

  std::string data_;
  TiffLayout layout_;
};

} // namespace fennick::picture

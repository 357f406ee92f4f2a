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

// Whether a tag of a first directory says how and where pixels are stored or where another directory is.
[[nodiscard]] bool isStructuralTag(std::uint16_t tag);

// An EXIF block that is edited where it stands: whatever is not touched, maker notes included, keeps its
// bytes and its place. A value; one thread at a time.
class ExifBlock {
public:
  // `block` is a TIFF structure, with or without "Exif\0\0" before it. Returns nullopt if it is not one.
  [[nodiscard]] static std::optional<ExifBlock> parse(std::string_view block);
  // A small block that says the orientation and nothing else, without "Exif\0\0".
  [[nodiscard]] static std::string minimal(std::uint16_t orientation);

  // The TIFF structure as it stands now, without "Exif\0\0".
  [[nodiscard]] const std::string &tiff() const { return data_; }

  // As the block says it, which may be out of range; absent: not said.
  [[nodiscard]] std::optional<std::int64_t> orientation() const;
  // In place; a block that says none grows at its end. False, with nothing written, when it cannot.
  [[nodiscard]] bool setOrientation(std::uint16_t orientation);
  // Where the block says how large the picture is.
  void setPixelDimensions(std::uint32_t width, std::uint32_t height);

  [[nodiscard]] bool hasGPS() const;
  [[nodiscard]] bool hasExif() const;
  // Whether the first directory says anything beyond how pixels are stored and where other directories are.
  [[nodiscard]] bool hasTIFF() const;
  [[nodiscard]] bool hasThumbnail() const;

  // Takes the GPS directory out and zeroes it with all its values, also the place names that two makers keep
  // in their notes, and copies of XMP and IPTC inside the block.
  void removeGPS();
  // Cuts the second directory, of the preview, and zeroes it with the preview; what is empty at the end goes.
  void removeThumbnail();

private:
  ExifBlock(std::string data, TiffLayout layout) : data_(std::move(data)), layout_(layout) {}

  [[nodiscard]] bool stateOrientation(std::uint16_t orientation);
  // Those of the chain with the EXIF and other directories they point to; not those that hold GPS.
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

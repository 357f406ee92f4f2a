#pragma once

#include "FennickCore/Imaging/Picture/HeifFile.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// What follows the main picture in a JPEG file and belongs to it: the gain map of an HDR photo, the video of
// a motion photo. Pure functions; any thread.
namespace fennick::picture {

struct JpegCompanions {
  std::optional<HeifStretch> gainMap{}; // a JPEG file of its own
  std::optional<HeifStretch> video{};
  std::size_t trailerAt = 0;     // where the bytes begin that the video must keep around it
  bool isSamsungTrailer = false; // ended by a directory of blocks, of which the video is one
};

// Both are found by what they are, whatever XMP and the multi-picture directory claim.
[[nodiscard]] JpegCompanions jpegCompanions(std::string_view file);

// The bytes around and including the video that are to follow a new encoding, and where in them it begins.
struct VideoTrailer {
  std::string bytes{};
  std::size_t videoAt = 0;
};
// As they stand in `file`; empty if there is no video.
[[nodiscard]] VideoTrailer videoTrailer(std::string_view file, const JpegCompanions &companions);
// With the video alone, its location removed; empty if there is no video or a location may remain in it.
[[nodiscard]] VideoTrailer cleanVideoTrailer(std::string_view file, const JpegCompanions &companions);

// The gain map's metadata in the form of ISO 21496-1 as the main picture announces it; empty: not announced.
[[nodiscard]] std::string isoGainMapBlock(std::string_view jpeg);

// Inserts `block`, if there is one, behind the other blocks of `jpeg`.
[[nodiscard]] std::string withIsoGainMapBlock(std::string jpeg, std::string_view block);

// `picture`, a JPEG, announcing `gainMap` in a multi-picture directory and followed by it. Empty if the two
// are too large for the directory.
[[nodiscard]] std::string withGainMap(std::string picture, std::string_view gainMap);

// Whether a segment's payload is a multi-picture directory or announces a gain map.
[[nodiscard]] bool announcesGainMap(std::string_view payload);

} // namespace fennick::picture

#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The outer structure of JPEG, PNG and WebP files. Parsing stops at the first incomplete part and after 4096
// parts. Pure functions; any thread.
namespace fennick::picture {

inline constexpr std::string_view kExifPrefix{"Exif\0\0", 6};
inline constexpr std::string_view kXMPPrefix{"http://ns.adobe.com/xap/1.0/\0", 29};

// The most parts of a file that are read.
inline constexpr std::size_t kMostParts = 4'096;

inline constexpr std::uint8_t kAPP0 = 0xE0;
inline constexpr std::uint8_t kAPP1 = 0xE1;
inline constexpr std::uint8_t kAPP2 = 0xE2;
inline constexpr std::uint8_t kAPP13 = 0xED;

// A part of a file: the start of its header, its content, and the start of the next part.
struct Part {
  std::size_t at = 0;
  std::size_t payloadAt = 0;
  std::size_t payloadBytes = 0;
  std::size_t end = 0;

  [[nodiscard]] std::string_view payload(std::string_view file) const {
    return file.substr(payloadAt, payloadBytes);
  }
};

struct JpegSegment : Part {
  std::uint8_t marker = 0;
};
// Returns the segments with a payload from the start of the picture to its first scan. Stray bytes between
// segments are skipped, as decoders do.
[[nodiscard]] std::vector<JpegSegment> jpegSegments(std::string_view file);
// Returns whether every byte before the first scan belongs to one of `segments`, which are the file's.
[[nodiscard]] bool isGapless(const std::vector<JpegSegment> &segments, std::string_view file);
// Returns the size in the frame header, of any kind of frame, or nullopt if a side is not stated.
[[nodiscard]] std::optional<PixelSize> jpegFrameSize(std::string_view file);
// Returns nullopt for a payload of more than 65,533 bytes.
[[nodiscard]] std::optional<std::string> jpegSegment(std::uint8_t marker, std::string_view payload);
// Returns the position after the end marker of the picture, ignoring thumbnails within segments, or nullopt
// if the marker is missing.
[[nodiscard]] std::optional<std::size_t> jpegEnd(std::string_view file);

struct Chunk : Part {
  std::string type; // four characters
};
// A run of IDAT chunks is represented by its first one.
[[nodiscard]] std::vector<Chunk> pngChunks(std::string_view file);
// The content of an iTXt chunk after the keyword: the compression, a language, the translated keyword, and
// the text.
struct PngText {
  bool isPacked = false;
  std::string_view text;
};
[[nodiscard]] std::optional<PngText> internationalText(std::string_view rest);
[[nodiscard]] std::string pngChunk(std::string_view type, std::string_view payload);
[[nodiscard]] std::vector<Chunk> webpChunks(std::string_view file);
[[nodiscard]] std::string webpChunk(std::string_view type, std::string_view payload);

[[nodiscard]] const Chunk *findChunk(const std::vector<Chunk> &chunks, std::string_view type);

// Decompresses the zlib parts of one file: at most 4 MB each and 16 MB in all. A part that is damaged or
// larger yields an empty text and counts with its maximum, so that no file takes much time.
class Unpacker {
public:
  [[nodiscard]] std::string operator()(std::string_view packed);

private:
  std::size_t room_ = 16UZ * 1'024 * 1'024;
};
[[nodiscard]] std::string deflated(std::string_view plain);

} // namespace fennick::picture

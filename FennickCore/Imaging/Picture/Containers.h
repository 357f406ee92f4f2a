#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The outer structure of JPEG, PNG and WebP files. Walkers stop at the first part that is not whole and after
// 4096 parts. Pure functions; any thread.
namespace fennick::picture {

inline constexpr std::string_view kExifPrefix{"Exif\0\0", 6};
inline constexpr std::string_view kXMPPrefix{"http://ns.adobe.com/xap/1.0/\0", 29};

// More parts of a file are not read.
inline constexpr std::size_t kMostParts = 4'096;

inline constexpr std::uint8_t kAPP0 = 0xE0;
inline constexpr std::uint8_t kAPP1 = 0xE1;
inline constexpr std::uint8_t kAPP2 = 0xE2;
inline constexpr std::uint8_t kAPP13 = 0xED;

// A part of a file: where its header starts, what it carries, where the next begins.
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
// The segments with a payload, from the start of the picture to its first scan. Bytes between segments that
// belong to none are passed over, as decoders do.
[[nodiscard]] std::vector<JpegSegment> jpegSegments(std::string_view file);
// Whether every byte before the first scan belongs to one of `segments`, which are the file's.
[[nodiscard]] bool isGapless(const std::vector<JpegSegment> &segments, std::string_view file);
// The size that the frame header states, of whatever kind the frame is; nothing if it leaves a side open.
[[nodiscard]] std::optional<PixelSize> jpegFrameSize(std::string_view file);
// Nothing for a payload beyond 65,533 bytes.
[[nodiscard]] std::optional<std::string> jpegSegment(std::uint8_t marker, std::string_view payload);
// Returns where the picture ends, behind its last marker; thumbnails within segments do not count. Returns
// nullopt if the marker is missing.
[[nodiscard]] std::optional<std::size_t> jpegEnd(std::string_view file);

struct Chunk : Part {
  std::string type; // four characters
};
// Of a run of IDAT chunks the first stands for all.
[[nodiscard]] std::vector<Chunk> pngChunks(std::string_view file);
// What follows the keyword in an iTXt chunk: whether the text is packed, and how, a language, the translated
// keyword, and the text.
struct PngText {
  bool isPacked = false;
  std::string_view text;
};
[[nodiscard]] std::optional<PngText> internationalText(std::string_view rest);
[[nodiscard]] std::string pngChunk(std::string_view type, std::string_view payload);
[[nodiscard]] std::vector<Chunk> webpChunks(std::string_view file);
[[nodiscard]] std::string webpChunk(std::string_view type, std::string_view payload);

[[nodiscard]] const Chunk *findChunk(const std::vector<Chunk> &chunks, std::string_view type);

// Unpacks what zlib packed, part by part of one file: 4 MB at most at once and 16 MB in all. A part that is
// damaged or larger is empty and counts as the most it could have been, so that no file takes much time.
class Unpacker {
public:
  [[nodiscard]] std::string operator()(std::string_view packed);

private:
  std::size_t room_ = 16UZ * 1'024 * 1'024;
};
[[nodiscard]] std::string deflated(std::string_view plain);

} // namespace fennick::picture

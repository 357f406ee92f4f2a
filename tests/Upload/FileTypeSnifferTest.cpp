#include "FennickCore/Upload/FileTypeSniffer.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace fennick {
namespace {

using namespace std::string_literals;

// A buffer of exactly this length, so that reading past its end is detected.
std::vector<std::byte> header(std::string_view bytes) {
  const auto view = std::as_bytes(std::span(bytes));
  return {view.begin(), view.end()};
}

std::string box(std::string_view type, std::string_view brand) {
  return "\0\0\0\x18"s.append(type).append(brand).append(4, '\0');
}

TEST(FileTypeSnifferTest, RecognisesASignatureFromItsLastByte) {
  const std::tuple<std::string, std::string, std::size_t> signatures[] = {
      {"\xFF\xD8\xFF\xE0\0\x10JFIF\0\1\1\0\0"s, "jpg", 4},
      {"GIF89a\1\0\1\0"s, "gif", 4},
      {"\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s, "png", 8},
      {"II*\0\x08\0\0\0\0"s, "tif", 4},
      {"MM\0*\0\0\0\x08\0"s, "tif", 4},
      {"RIFF\0\0\0\0WEBPVP8 "s, "webp", 12},
      {box("ftyp", "heic"), "heic", 12},
      {box("ftyp", "MIF1"), "heic", 12},
      {box("ftyp", "avis"), "avif", 12},
      {box("ftyp", "qt  "), "mov", 12},
      {box("ftyp", "M4V "), "m4v", 12},
      {box("ftyp", "isom"), "mp4", 12},
      {box("ftyp", "3gp4"), "mp4", 12}};
  for (const auto &[bytes, extension, shortest] : signatures)
    for (std::size_t length = 0; length <= bytes.size(); ++length)
      EXPECT_EQ(FileTypeSniffer::sniff(header(bytes.substr(0, length))),
                length >= shortest ? std::optional(extension) : std::nullopt)
          << extension << " of " << length;
  for (const std::string &bytes :
       {"#!/bin/sh\nexit 0"s, "<html><script>  "s, "%PDF-1.7 content"s, "PK\3\4\0\0\0\0\0\0\0\0"s,
        "RIFF\0\0\0\0WAVEfmt "s, box("ftyp", "evil"), box("ftyp", "\xC3\xA9zz"), box("FTYP", "heic"),
        "ftypheicftypheic"s, "MM*\0\0\0\0\x08\0\0\0\0"s, " \xFF\xD8\xFF\xE0"s, std::string(16, '\0')})
    EXPECT_EQ(FileTypeSniffer::sniff(header(bytes)), std::nullopt) << bytes;
}

TEST(FileTypeSnifferTest, TrustsTheSenderOnlyForDNG) {
  using Text = std::optional<std::string>;
  const std::string tiff = "II*\0\x08\0\0\0"s;
  const std::string jpeg = "\xFF\xD8\xFF\xE0";
  const std::tuple<std::string, Text, Text, Text> claims[] = {
      {tiff, {}, "IMG_1.DNG", "dng"},
      {tiff, "image/x-adobe-dng", "a.tif", "dng"},
      {tiff, "application/octet-stream", "a.dng", "dng"},
      {tiff, "image/tiff", "a.dng", "tif"},
      {tiff, {}, ".dng", "tif"},
      {tiff, {}, "dng", "tif"},
      {tiff, {}, {}, "tif"},
      {jpeg, "image/dng", "a.dng", "jpg"},
      {"GIF89a", "video/mp4", "a.mov", "gif"},
      {"not a photo", "image/jpeg", "a.jpg", {}}};
  for (const auto &[bytes, mediaType, filename, saved] : claims)
    EXPECT_EQ(FileTypeSniffer::resolve(header(bytes), mediaType, filename), saved)
        << mediaType.value_or("-") << " " << filename.value_or("-");
}

} // namespace
} // namespace fennick

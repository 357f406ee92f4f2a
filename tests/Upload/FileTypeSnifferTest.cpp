#include "FennickCore/Upload/FileTypeSniffer.h"

#include <gtest/gtest.h>

#include <vector>

namespace fennick {
namespace {

using namespace std::string_literals;

// The bytes in a buffer of exactly their length, so that reading past them is noticed.
std::vector<std::byte> header(std::string_view bytes) {
  const auto view = std::as_bytes(std::span(bytes));
  return {view.begin(), view.end()};
}

struct Signature {
  std::string bytes;
  std::string extension;
  std::size_t shortest; // bytes that must be there before it counts
};

TEST(FileTypeSnifferTest, ASignatureCountsFromItsLastByteOnAndNeverSooner) {
  const std::vector<Signature> signatures{{"\xFF\xD8\xFF\xE0\0\x10JFIF\0\1\1\0\0"s, "jpg", 4},
                                          {"GIF89a\1\0\1\0\x80\0\0\0\0\0"s, "gif", 4},
                                          {"\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s, "png", 8},
                                          {"II*\0\x08\0\0\0\0\0\0\0\0\0\0\0"s, "tif", 4},
                                          {"MM\0*\0\0\0\x08\0\0\0\0\0\0\0\0"s, "tif", 4},
                                          {"RIFF\0\0\0\0WEBPVP8 "s, "webp", 12},
                                          {"\0\0\0\x18"
                                           "ftypheic\0\0\0\0"s,
                                           "heic", 12},
                                          {"\0\0\0\x18"
                                           "ftypMIF1\0\0\0\0"s,
                                           "heic", 12},
                                          {"\0\0\0\x18"
                                           "ftypavis\0\0\0\0"s,
                                           "avif", 12},
                                          {"\0\0\0\x14"
                                           "ftypqt  \0\0\0\0"s,
                                           "mov", 12},
                                          {"\0\0\0\x1C"
                                           "ftypM4V \0\0\0\0"s,
                                           "m4v", 12},
                                          {"\0\0\0\x20"
                                           "ftypisom\0\0\0\0"s,
                                           "mp4", 12},
                                          {"\0\0\0\x18"
                                           "ftyp3gp4\0\0\0\0"s,
                                           "mp4", 12}};
  for (const auto &[bytes, extension, shortest] : signatures)
    for (std::size_t length = 0; length <= bytes.size(); ++length)
      EXPECT_EQ(FileTypeSniffer::sniff(header(bytes.substr(0, length))),
                length >= shortest ? std::optional(extension) : std::nullopt)
          << extension << " of " << length;
}

TEST(FileTypeSnifferTest, WhatIsNoPhotoOrVideoIsNotTaken) {
  for (const std::string &bytes :
       {"#!/bin/sh\nexit 0"s, "<html><script>  "s, "%PDF-1.7 content"s, "PK\3\4\0\0\0\0\0\0\0\0\0\0\0\0"s,
        "RIFF\0\0\0\0WAVEfmt "s,
        "\0\0\0\x18"
        "ftypevil\0\0\0\0"s,
        "\0\0\0\x18"
        "ftyp\xC3\xA9zz\0\0\0\0"s,
        "ftypheicftypheic"s,
        "\0\0\0\x18"
        "FTYPheic\0\0\0\0"s,
        "MM*\0\0\0\0\x08\0\0\0\0\0\0\0\0"s, " \xFF\xD8\xFF\xE0"s, std::string(16, '\0')})
    EXPECT_EQ(FileTypeSniffer::sniff(header(bytes)), std::nullopt) << bytes;
}

TEST(FileTypeSnifferTest, OnlyARawFileIsBelievedToBeOne) {
  using Text = std::optional<std::string>;
  struct Claim {
    std::string bytes;
    Text mediaType;
    Text filename;
    Text saved;
  };
  const std::string tiff = "II*\0\x08\0\0\0"s;
  for (const auto &[bytes, mediaType, filename, saved] :
       {Claim{tiff, {}, "IMG_1.DNG", "dng"}, Claim{tiff, "image/x-adobe-dng", "a.tif", "dng"},
        Claim{tiff, "application/octet-stream", "a.dng", "dng"}, Claim{tiff, "image/tiff", "a.dng", "tif"},
        Claim{tiff, {}, "scan.tif", "tif"}, Claim{tiff, {}, ".dng", "tif"}, Claim{tiff, {}, "dng", "tif"},
        Claim{tiff, {}, {}, "tif"}, Claim{"\xFF\xD8\xFF\xE0", "image/dng", "a.dng", "jpg"},
        Claim{"GIF89a", "video/mp4", "a.mov", "gif"}, Claim{"not a photo", "image/jpeg", "a.jpg", {}}})
    EXPECT_EQ(FileTypeSniffer::resolve(header(bytes), mediaType, filename), saved)
        << mediaType.value_or("-") << " " << filename.value_or("-");
}

} // namespace
} // namespace fennick

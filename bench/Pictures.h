#pragma once

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <filesystem>
#include <string>
#include <utility>

// Pictures to measure with, and what other programs and libraries do with them. One thread at a time unless
// said otherwise; what fails ends the program with a message.
namespace bench {

// Where the pictures lie, what reads them, and how often each contestant is measured.
struct Stand {
  std::filesystem::path folder;
  fennick::DecoderPool &decoder;
  int rounds;

  // A picture made before, or another name in its folder.
  [[nodiscard]] std::filesystem::path file(const std::string &name) const { return folder / name; }
};

// A JPEG like a phone's: shapes with edges, texture at every scale, grain; quality 92, colours at half
// resolution. The same bytes every time.
void writePhoto(const std::filesystem::path &file, int width, int height);

// A picture in another format, told by the new file's extension: "png" packed lightly, "avif" encoded in
// haste.
void convert(const std::filesystem::path &from, const std::filesystem::path &to);

[[noreturn]] void fail(const std::string &what);
template <typename T>
T need(fennick::PictureResult<T> result) {
  if (!result)
    fail("a picture was not read: " + result.error().detail);
  return std::move(*result);
}

[[nodiscard]] std::string contentOf(const std::filesystem::path &file);

// The least that a thumbnail of a JPEG can cost: libjpeg-turbo decodes at the nearest scale by eighths that
// is not smaller and encodes that, without leaving the file's own colours. Any thread.
[[nodiscard]] std::string bareThumbnail(const std::filesystem::path &file, int longEdge, int percent);
// libvips inside this process at its best: vector code on, as many threads as it likes.
[[nodiscard]] std::string vipsThumbnail(const std::filesystem::path &file, int longEdge, int percent);

// Runs a command line, whose own output is dropped.
void runCommand(const std::string &command);
// ImageMagick's program as Debian installs it, whatever stands before it on the PATH.
inline constexpr const char *kConvert = "/usr/bin/convert";

} // namespace bench

#pragma once

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <filesystem>
#include <string>
#include <utility>

// Test pictures, and the same work done by other programs and libraries. One thread at a time unless stated
// otherwise; failures end the program with a message.
namespace bench {

// The pictures, their reader, and the number of rounds.
struct Stand {
  std::filesystem::path folder;
  fennick::DecoderPool &decoder;
  int rounds;

  // Returns a prepared picture, or another path in its folder.
  [[nodiscard]] std::filesystem::path file(const std::string &name) const { return folder / name; }
};

// Writes a JPEG like a phone's: shapes with edges, texture at every scale, grain; quality 92, colours at half
// resolution. The same bytes every time.
void writePhoto(const std::filesystem::path &file, int width, int height);

// Converts a picture to the format of the new file's extension; "png" and "avif" use fast settings.
void convert(const std::filesystem::path &from, const std::filesystem::path &to);

[[noreturn]] void fail(const std::string &what);
template <typename T>
T need(fennick::PictureResult<T> result) {
  if (!result)
    fail("a picture was not read: " + result.error().detail);
  return std::move(*result);
}

[[nodiscard]] std::string contentOf(const std::filesystem::path &file);

// The minimal cost of a JPEG thumbnail: libjpeg-turbo decodes at the nearest larger eighth and encodes that
// in the file's own colours. Any thread.
[[nodiscard]] std::string bareThumbnail(const std::filesystem::path &file, int longEdge, int percent);
// libvips inside this process with vector code and any number of threads.
[[nodiscard]] std::string vipsThumbnail(const std::filesystem::path &file, int longEdge, int percent);

// Runs a command line and discards its output.
void runCommand(const std::string &command);
// Debian's ImageMagick program, whatever comes first in PATH.
inline constexpr const char *kConvert = "/usr/bin/convert";

} // namespace bench

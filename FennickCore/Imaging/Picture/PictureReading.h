#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <optional>
#include <string>

// What a request for a picture comes to. Called in the imaging process, one at a time; every library's
// exception ends here.
namespace fennick::picture {

// What the file's header says; absent or 1 where it cannot be read. No pixels are decoded.
struct PictureHeader {
  std::optional<std::int64_t> width{}; // as stored
  std::optional<std::int64_t> height{};
  std::int64_t frames = 1;
  Fidelity fidelity = Fidelity::faithful; // as far as the header tells: without the colour profile
};
[[nodiscard]] PictureHeader readHeader(Bytes file, PictureType type);

enum class Depth { header, file }; // `header`: without the leftovers, which only the whole file tells
[[nodiscard]] PictureResult<PictureFacts> readFacts(Bytes file, Depth depth);
[[nodiscard]] PictureResult<PictureDetails> readDetails(Bytes file);

// See PictureDecoder for both.
[[nodiscard]] PictureResult<std::string> makeThumbnail(Bytes file, std::int64_t maxPixel, double quality);
[[nodiscard]] PictureResult<Rendering> render(Bytes file, const RenderRequest &request);

} // namespace fennick::picture

#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <optional>
#include <string>

// Answers requests about pictures. Called in the imaging process, one at a time; catches the exceptions of
// all libraries.
namespace fennick::picture {

// What the file's header states; nullopt or 1 if it cannot be read. No pixels are decoded.
struct PictureHeader {
  std::optional<std::int64_t> width{}; // as stored
  std::optional<std::int64_t> height{};
  std::int64_t frames = 1;
  Fidelity fidelity = Fidelity::faithful; // as far as the header tells: without the colour profile
};
[[nodiscard]] PictureHeader readHeader(Bytes file, PictureType type);

enum class Depth { header, file }; // `header`: without leftovers, which only the whole file tells
[[nodiscard]] PictureResult<PictureFacts> readFacts(Bytes file, Depth depth);
[[nodiscard]] PictureResult<PictureDetails> readDetails(Bytes file);

} // namespace fennick::picture

#pragma once

#include "FennickCore/Imaging/PictureTypes.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

namespace fennick {

// Why a picture was not read. Whatever it is, the file is untouched. The imaging process reports those up to
// `unsupported`; the others are found out by whoever looks after it.
enum class PictureFault : std::uint8_t {
  unreadable,  // the file cannot be opened: gone, no permission, a link, not a regular file
  notAPicture, // its content is none of PictureType
  undecodable, // damaged, beyond ImageLimits, or something the decoder does not know
  unencodable, // decoded, but the result could not be written or did not pass its check
  unsupported, // the format cannot carry what was asked for
  crashed,     // the decoder died over it
  timedOut,    // the decoder took too long over it and was ended
  busy,        // no decoder became free in time; says nothing about the picture, ask again later
  noDecoder,   // the locked-down decoder cannot be started here, and there is no decoding without it
  stopped,     // the program ends
};

struct PictureError {
  PictureFault fault = PictureFault::undecodable;
  std::string detail; // for the log, in the words of whoever found it; may be empty

  bool operator==(const PictureError &) const = default;
};

template <typename T>
using PictureResult = std::expected<T, PictureError>;

// A new encoding of a picture, wanted upright.
struct RenderRequest {
  PictureType output = PictureType::jpeg; // jpeg, png or heic
  std::int64_t longEdge = 0;              // most pixels of the longer side; never enlarges
  std::optional<std::int64_t> maxBytes{}; // of the whole file, metadata included; absent: any size
  double quality = 0.85;                  // of lossy encoding, 0 to 1
  double qualityFloor = 0.5;              // how low the search for `maxBytes` may go
  bool stripLocation = false;
  bool stripAllMetadata = false;
  // When the search for `maxBytes` ends with the smallest file so far, counted from the request. The first
  // encoding is made in any case. Absent: the search ends when it has found what it can.
  std::optional<Seconds> searchTime{};
};

struct Rendering {
  std::string bytes;         // the whole file; what was to be removed from it has been looked for and is gone
  std::int64_t longEdge = 0; // of the result, in pixels
  double quality = 0;        // of the last encoding tried
  bool withinMaxBytes = true; // false: the smallest that could be made in time, still over `maxBytes`
  bool losesVideo = false;    // the photo had a motion video, which the new file does not have
  bool losesGainMap = false;  // the same for the gain map of an HDR photo
};

// The one way in which pictures are read: nothing else in the program looks inside them. Every call opens the
// file itself, following no link, and blocks until there is an answer. Any thread, several calls at once.
class PictureDecoder {
public:
  virtual ~PictureDecoder() = default;

  // Reads headers and metadata, no pixels. Goes through the whole file for what stands behind the picture.
  [[nodiscard]] virtual PictureResult<PictureFacts> facts(const std::filesystem::path &file) = 0;
  // The same from the beginning of the file, for many files at once: of location and metadata, what it says
  // may be incomplete.
  [[nodiscard]] virtual PictureResult<PictureFacts> headerFacts(const std::filesystem::path &file) {
    return facts(file);
  }
  // Reads what people want to know of how the picture was taken; no pixels.
  [[nodiscard]] virtual PictureResult<PictureDetails> details(const std::filesystem::path &file) = 0;
  // A JPEG of at most `maxPixel` pixels on the longer side, upright, in sRGB, without metadata; the first
  // picture of several. `quality` from 0 to 1.
  [[nodiscard]] virtual PictureResult<std::string> thumbnail(const std::filesystem::path &file,
                                                             std::int64_t maxPixel, double quality) = 0;
  // A new encoding of the file's only picture. A damaged picture, of which only a part could be shown, is
  // undecodable here. `timeout` ends the work; the search for `maxBytes` ends in time to answer before it.
  [[nodiscard]] virtual PictureResult<Rendering> render(const std::filesystem::path &file,
                                                        const RenderRequest &request, Seconds timeout) = 0;
  // The whole file with only its orientation changed to `orientation` (1 to 8), pixels as they were.
  // `unsupported` for a format that has no place for it.
  [[nodiscard]] virtual PictureResult<std::string> withOrientation(const std::filesystem::path &file,
                                                                   std::int64_t orientation) = 0;
  // Whether HEIC can be written here; found out once.
  [[nodiscard]] virtual bool canEncodeHEIC() = 0;
};

} // namespace fennick

#pragma once

#include "FennickCore/Imaging/PictureTypes.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

namespace fennick {

// Why a picture was not read. The file is unchanged in every case. The imaging process reports the errors up
// to `unsupported`; DecoderPool detects the others.
enum class PictureFault : std::uint8_t {
  unreadable,  // the file cannot be opened: gone, no permission, a link, not a regular file
  notAPicture, // its content is not one of PictureType
  undecodable, // damaged, beyond ImageLimits, or unknown to the decoder
  unencodable, // decoded, but the result could not be written or did not pass its check
  unsupported, // the format cannot store what was requested
  crashed,     // the decoder died over it
  timedOut,    // the decoder took too long over it and was ended
  busy,        // no decoder became free in time; says nothing about the picture, ask again later
  noDecoder,   // the locked-down decoder cannot be started here, and there is no decoding without it
  stopped,     // the program ends
};

struct PictureError {
  PictureFault fault = PictureFault::undecodable;
  std::string detail; // for the log; may be empty

  bool operator==(const PictureError &) const = default;
};

template <typename T>
using PictureResult = std::expected<T, PictureError>;

// A request for an upright re-encoding of a picture.
struct RenderRequest {
  PictureType output = PictureType::jpeg; // jpeg, png or heic
  std::int64_t longEdge = 0;              // most pixels of the longer side; never enlarges
  std::optional<std::int64_t> maxBytes{}; // of the whole file, including metadata; absent: unlimited
  double quality = 0.85;                  // of lossy encoding, 0 to 1
  double qualityFloor = 0.5;              // how low the search for `maxBytes` may go
  bool stripLocation = false;
  bool stripAllMetadata = false;
  // When the search for `maxBytes` ends with the smallest file so far, counted from the request. The first
  // encoding is always made. Absent: the search is not limited.
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

// Reads pictures: no other part of the program parses them. Every call opens the file itself, without
// following links, and blocks until there is an answer. Any thread, several calls at once.
class PictureDecoder {
public:
  virtual ~PictureDecoder() = default;

  // Reads headers and metadata, no pixels. Reads the whole file to find what is stored behind the picture.
  [[nodiscard]] virtual PictureResult<PictureFacts> facts(const std::filesystem::path &file) = 0;
  // Does the same from the beginning of the file only, for many files at once: the facts about location and
  // metadata may be incomplete.
  [[nodiscard]] virtual PictureResult<PictureFacts> headerFacts(const std::filesystem::path &file) {
    return facts(file);
  }
  // Reads how the picture was taken; no pixels.
  [[nodiscard]] virtual PictureResult<PictureDetails> details(const std::filesystem::path &file) = 0;
  // Returns a JPEG of at most `maxPixel` pixels on the longer side, upright, in sRGB, without metadata; the
  // first picture if there are several. `quality` from 0 to 1.
  [[nodiscard]] virtual PictureResult<std::string> thumbnail(const std::filesystem::path &file,
                                                             std::int64_t maxPixel, double quality) = 0;
  // Re-encodes the file's only picture. A damaged picture, of which only a part could be displayed, is
  // undecodable here. `timeout` ends the work; the search for `maxBytes` ends early enough to answer before
  // that.
  [[nodiscard]] virtual PictureResult<Rendering> render(const std::filesystem::path &file,
                                                        const RenderRequest &request, Seconds timeout) = 0;
  // Returns the whole file with only its orientation changed to `orientation` (1 to 8) and the pixels
  // unchanged. Fails with `unsupported` if the format cannot store it.
  [[nodiscard]] virtual PictureResult<std::string> withOrientation(const std::filesystem::path &file,
                                                                   std::int64_t orientation) = 0;
  // Returns whether HEIC can be written on this computer. Determined once.
  [[nodiscard]] virtual bool canEncodeHEIC() = 0;
};

} // namespace fennick

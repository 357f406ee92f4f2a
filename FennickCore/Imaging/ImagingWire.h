#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

// The conversation between the program and its imaging process: JSON objects, one a message. A request comes
// with the open file, an answer that has bytes with a sealed memory file. The process says hello once, when
// it has given everything up. Neither side believes the other: what cannot be understood is nothing. Any
// thread.
namespace fennick::wire {

// No message is longer.
inline constexpr std::size_t kMostMessageBytes = 4096;
// No encoded picture is longer; 100 million pixels of 16-bit PNG stay below it unless they are pure noise.
inline constexpr std::int64_t kMostResultBytes = std::int64_t{512} << 20;
// No thumbnail is longer.
inline constexpr std::int64_t kMostThumbnailBytes = std::int64_t{32} << 20;

struct FactsRequest {
  bool headerOnly = false; // without looking for what only the whole file tells
};
struct DetailsRequest {};
struct ThumbnailRequest {
  std::int64_t maxPixel = 0;
  double quality = 0;
};
struct OrientationRequest {
  std::int64_t orientation = 0;
};
using Request =
    std::variant<FactsRequest, DetailsRequest, ThumbnailRequest, RenderRequest, OrientationRequest>;

struct Hello {
  bool lockedDown = false; // false: there will be no decoding, `detail` says why
  bool encodesHEIC = false;
  std::string detail;
};

// Exactly one of `error` and the rest means something; which of the rest depends on the request.
struct Answer {
  std::optional<PictureError> error;
  PictureFacts facts;
  PictureDetails details;
  std::int64_t longEdge = 0;
  double quality = 0;
  bool withinMaxBytes = true;
  bool losesVideo = false;
  bool losesGainMap = false;
};

[[nodiscard]] std::string encoded(const Request &request);
[[nodiscard]] std::string encoded(const Hello &hello);
[[nodiscard]] std::string encoded(const Answer &answer);
[[nodiscard]] std::optional<Request> decodedRequest(std::string_view message);
[[nodiscard]] std::optional<Hello> decodedHello(std::string_view message);
[[nodiscard]] std::optional<Answer> decodedAnswer(std::string_view message);

} // namespace fennick::wire

#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

// The protocol between the program and its imaging process: one JSON object per message. A request carries
// the open file, an answer with bytes a sealed memory file. The process sends one greeting after it has
// locked itself down. Neither side trusts the other: messages that cannot be parsed are rejected. Any thread.
namespace fennick::wire {

// The longest message.
inline constexpr std::size_t kMostMessageBytes = 4096;
// The longest encoded picture; 100 million pixels of 16-bit PNG stay below it unless they are pure noise.
inline constexpr std::int64_t kMostResultBytes = std::int64_t{512} << 20;
// The longest thumbnail.
inline constexpr std::int64_t kMostThumbnailBytes = std::int64_t{32} << 20;

struct FactsRequest {
  bool headerOnly = false; // without facts that only the whole file tells
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
  bool lockedDown = false; // if false it decodes nothing, and `detail` says why
  bool encodesHEIC = false;
  std::string detail;
};

// Exactly one of `error` and the other fields is set; which of those depends on the request.
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

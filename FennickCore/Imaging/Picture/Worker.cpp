#include "FennickCore/Imaging/Picture/Worker.h"

#include "FennickCore/Imaging/ImagingWire.h"
#include "FennickCore/Imaging/Picture/Codecs.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/Orientation.h"
#include "FennickCore/Imaging/Picture/PictureReading.h"
#include "FennickCore/Imaging/Picture/PictureSniffer.h"
#include "FennickCore/Imaging/Picture/Rendering.h"
#include "FennickCore/Imaging/Picture/Sandbox.h"
#include "FennickCore/Imaging/Picture/Thumbnail.h"
#include "FennickCore/Platform/Files/MemoryFile.h"

#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

namespace fennick::picture {

namespace {

// No caller waits that long: the program is gone or has stopped. The alarm ends the process.
constexpr long kLongestRequest = 300; // seconds

void setAlarm(long seconds) {
  const itimerval timer{.it_interval = {}, .it_value = {.tv_sec = seconds, .tv_usec = 0}};
  ::setitimer(ITIMER_REAL, &timer, nullptr);
}

struct Outcome {
  wire::Answer answer;
  std::string bytes;
};

Outcome failed(PictureError error) {
  Outcome outcome;
  outcome.answer.error = std::move(error);
  return outcome;
}

template <typename T, typename Use>
Outcome outcomeOf(PictureResult<T> result, Use use) {
  if (!result)
    return failed(std::move(result.error()));
  Outcome outcome;
  use(*result, outcome);
  return outcome;
}

PictureResult<std::string> turned(Bytes file, std::int64_t orientation) {
  const auto type = sniffType(file);
  if (!type)
    return std::unexpected(PictureError{.fault = PictureFault::notAPicture, .detail = {}});
  auto result = withOrientation(file, *type, orientation);
  if (!result)
    return std::unexpected(PictureError{.fault = result.error(), .detail = "its orientation cannot be set"});
  return std::move(*result);
}

Outcome carriedOut(const wire::Request &request, Bytes file) {
  return std::visit(
      [&](const auto &task) {
        using Task = std::decay_t<decltype(task)>;
        const auto takeBytes = [](std::string &bytes, Outcome &outcome) { outcome.bytes = std::move(bytes); };
        if constexpr (std::is_same_v<Task, wire::FactsRequest>)
          return outcomeOf(readFacts(file, task.headerOnly ? Depth::header : Depth::file),
                           [](const PictureFacts &facts, Outcome &o) { o.answer.facts = facts; });
        else if constexpr (std::is_same_v<Task, wire::DetailsRequest>)
          return outcomeOf(readDetails(file), [](PictureDetails &details, Outcome &o) {
            o.answer.details = std::move(details);
          });
        else if constexpr (std::is_same_v<Task, wire::ThumbnailRequest>)
          return outcomeOf(makeThumbnail(file, task.maxPixel, task.quality), takeBytes);
        else if constexpr (std::is_same_v<Task, wire::OrientationRequest>)
          return outcomeOf(turned(file, task.orientation), takeBytes);
        else
          return outcomeOf(render(file, task), [](Rendering &rendering, Outcome &outcome) {
            outcome.answer.longEdge = rendering.longEdge;
            outcome.answer.quality = rendering.quality;
            outcome.answer.withinMaxBytes = rendering.withinMaxBytes;
            outcome.answer.losesVideo = rendering.losesVideo;
            outcome.answer.losesGainMap = rendering.losesGainMap;
            outcome.bytes = std::move(rendering.bytes);
          });
      },
      request);
}

// Examines the beginning, so that a video of any size is distinguished from an unreadable picture.
bool looksLikePicture(const FileDescriptor &file) {
  std::array<std::byte, 4096> start{};
  const ssize_t count = ::pread(file.get(), start.data(), start.size(), 0);
  return count > 0 && sniffType(std::span(start).first(static_cast<std::size_t>(count)));
}

Outcome answered(std::string_view message, const FileDescriptor &attached) {
  const auto request = wire::decodedRequest(message);
  if (!request)
    return failed({.fault = PictureFault::unreadable, .detail = "the request makes no sense"});
  if (!looksLikePicture(attached))
    return failed({.fault = PictureFault::notAPicture, .detail = {}});
  const auto file = MappedFile::map(attached);
  if (!file)
    return failed({.fault = PictureFault::undecodable, .detail = file.error().message()});
  return carriedOut(*request, file->bytes());
}

bool send(MessageSocket &socket, const std::string &message, const FileDescriptor *attached = nullptr) {
  return socket.send(std::as_bytes(std::span(message)), attached).has_value();
}

bool sendOutcome(MessageSocket &socket, const Outcome &outcome) {
  if (outcome.bytes.empty())
    return send(socket, wire::encoded(outcome.answer));
  const auto file = sealedMemoryFile(outcome.bytes);
  if (!file)
    return send(
        socket,
        wire::encoded(failed({.fault = PictureFault::unencodable, .detail = file.error().message()}).answer));
  return send(socket, wire::encoded(outcome.answer), &*file);
}

std::expected<void, std::string> prepared() {
  offerToOutOfMemoryKiller();
  if (auto limited = limitResources(); !limited)
    return limited;
  if (auto ready = prepareCodecs(); !ready)
    return ready;
  return lockDown();
}

} // namespace

int serve(MessageSocket socket) {
  const auto ready = prepared();
  const wire::Hello hello{.lockedDown = ready.has_value(),
                          .encodesHEIC = ready && encodesHeic(),
                          .detail = ready ? std::string() : ready.error()};
  if (!send(socket, wire::encoded(hello)) || !ready)
    return EXIT_FAILURE;
  std::array<std::byte, wire::kMostMessageBytes> buffer{};
  while (true) {
    const auto request = socket.receive(buffer);
    if (!request || request->bytes == 0)
      return request ? EXIT_SUCCESS : EXIT_FAILURE;
    setAlarm(kLongestRequest);
    const std::string_view message(reinterpret_cast<const char *>(buffer.data()), request->bytes);
    if (!sendOutcome(socket, answered(message, request->attached)))
      return EXIT_FAILURE;
    setAlarm(0);
  }
}

} // namespace fennick::picture

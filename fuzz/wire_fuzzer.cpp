// What the imaging process and the program say to each other: neither believes the other.
#include "FennickCore/Imaging/ImagingWire.h"
#include "fuzz/Property.h"

using namespace fennick;
using fennick::fuzz::require;

namespace {

// What was understood can be said again, fits into a message and is understood the same way.
template <typename Decode>
void roundTrip(std::string_view message, Decode decode) {
  const auto understood = decode(message);
  if (!understood)
    return;
  const std::string again = wire::encoded(*understood);
  require(again.size() <= wire::kMostMessageBytes);
  const auto second = decode(again);
  require(second.has_value() && wire::encoded(*second) == again);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const auto message = fuzz::textOf(data, size);
  roundTrip(message, wire::decodedRequest);
  roundTrip(message, wire::decodedHello);
  roundTrip(message, wire::decodedAnswer);
  if (const auto answer = wire::decodedAnswer(message); answer && !answer->error)
    require(answer->quality >= 0 && answer->quality <= 1 && answer->longEdge >= 0 &&
            answer->facts.frames >= 0 && answer->details.camera.size() <= kMostDetailText);
  return 0;
}

// Decodes messages between the imaging process and the program, which do not trust each other.
#include "FennickCore/Imaging/ImagingWire.h"
#include "fuzz/Property.h"

using namespace fennick;
using fennick::fuzz::require;

namespace {

// A decoded message must be encodable, fit the size limit and decode to the same value.
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

// Parses the boxes of a HEIC, HEIF or AVIF file and rotates it to all orientations.
#include "FennickCore/Imaging/Picture/Heif.h"
#include "fuzz/Property.h"

using namespace fennick::picture;
using fennick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const auto file = std::as_bytes(std::span(data, size));
  const auto now = heifOrientation(file);
  (void)heifBlocks(file);
  require(!now || (*now >= 1 && *now <= 8));
  for (std::int64_t orientation = 1; orientation <= 8; ++orientation) {
    const auto turned = heifWithOrientation(file, orientation);
    require(now || !turned);
    require(!turned || turned->size() >= size);
  }
  return 0;
}

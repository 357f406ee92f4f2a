// Sniffs the first bytes of an upload with its declared names: up to 16 bytes, then "media type NUL file
// name".
#include "FennickCore/Upload/FileTypeSniffer.h"
#include "fuzz/Property.h"

#include <algorithm>
#include <optional>
#include <string>

using namespace fennick;
using fennick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const auto bytes = std::as_bytes(std::span(data, size));
  const auto header = bytes.first(std::min(size, FileTypeSniffer::kHeaderBytes));
  const std::string_view rest = fuzz::textOf(data, size).substr(header.size());
  const std::string mediaType(rest.substr(0, rest.find('\0')));
  const std::string filename(rest.substr(std::min(rest.size(), mediaType.size() + 1)));

  const auto sniffed = FileTypeSniffer::sniff(header);
  require(FileTypeSniffer::sniff(bytes) == sniffed); // later bytes must not matter
  for (std::size_t length = 0; length < header.size(); ++length) {
    const auto early = FileTypeSniffer::sniff(header.first(length));
    require(!early || early == sniffed); // more bytes must not change a result
  }
  // The sender's declaration may only turn a TIFF into a DNG.
  for (const auto &type : {std::optional<std::string>(), std::optional(mediaType)})
    for (const auto &name : {std::optional<std::string>(), std::optional(filename)}) {
      const auto resolved = FileTypeSniffer::resolve(header, type, name);
      require(resolved == sniffed || (sniffed == "tif" && resolved == "dng"));
    }
  return 0;
}

// Feeds arbitrary text to the settings reader and, line by line, to the command line's overrides. Whatever is
// accepted must be storable and read back equal.

#include "FennickCore/Settings/SettingsCodec.h"
#include "FennickCore/Settings/SettingsOverride.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void checkRoundTrip(const fennick::AppSettings &settings) {
  const auto stored = fennick::encode(settings);
  if (!stored || fennick::decodeAppSettings(*stored) != settings)
    std::abort();
}

void checkOverrides(fennick::AppSettings settings, std::string_view lines) {
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(line.size());
    lines.remove_prefix(lines.empty() ? 0 : 1);
    if (fennick::applyOverride(settings, line))
      checkRoundTrip(settings);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  if (const auto settings = fennick::decodeAppSettings(text))
    checkRoundTrip(*settings);
  checkOverrides({}, text);
  return 0;
}

#include "FennickCore/Imaging/Picture/Codecs.h"

#include "FennickCore/Imaging/Picture/MetadataExiv2.h"

#include <libheif/heif.h>
#include <vips/vips8>

#include <vips/vector.h> // needs the former

#include <algorithm>
#include <array>
#include <thread>

namespace fennick::picture {

namespace {

// A request uses this many threads where its library can; several pictures at once have a process each.
constexpr unsigned kMostThreads = 4;

// libvips knows more formats than we take; their loaders are out of reach.
void blockOtherLoaders() {
  static constexpr std::array kLoaders{"VipsForeignLoadPng", "VipsForeignLoadWebp", "VipsForeignLoadTiff",
                                       "VipsForeignLoadNsgif"};
  ::vips_operation_block_set("VipsForeignLoad", 1);
  for (const char *loader : kLoaders)
    ::vips_operation_block_set(loader, 0);
}

// Complaints go into answers, where they are of use, not to anybody's terminal.
void silence(const char *, GLogLevelFlags, const char *, void *) {}

} // namespace

std::expected<void, std::string> prepareCodecs() {
  ::g_log_set_default_handler(&silence, nullptr);
  if (vips_init("tevrin-imaging") != 0)
    return std::unexpected(std::string("libvips: ") + ::vips_error_buffer());
  prepareExiv2();
  ::vips_vector_set_enabled(0); // it writes code while it runs, which the locked-down process may not
  ::vips_cache_set_max(0);      // no picture is looked at twice
  ::vips_concurrency_set(static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads)));
  blockOtherLoaders();
  if (::heif_init(nullptr).code != heif_error_Ok)
    return std::unexpected(std::string("libheif cannot be made ready"));
  return {};
}

} // namespace fennick::picture

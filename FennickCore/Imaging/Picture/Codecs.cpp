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

// Threads for one request if its library supports them; pictures that are processed at the same time have a
// process each.
constexpr unsigned kMostThreads = 4;

// Disables the loaders of formats that the program does not accept.
void blockOtherLoaders() {
  static constexpr std::array kLoaders{"VipsForeignLoadPng", "VipsForeignLoadWebp", "VipsForeignLoadTiff",
                                       "VipsForeignLoadNsgif"};
  ::vips_operation_block_set("VipsForeignLoad", 1);
  for (const char *loader : kLoaders)
    ::vips_operation_block_set(loader, 0);
}

// Warnings become part of answers and are not printed.
void silence(const char *, GLogLevelFlags, const char *, void *) {}

} // namespace

std::expected<void, std::string> prepareCodecs() {
  ::g_log_set_default_handler(&silence, nullptr);
  if (vips_init("tevrin-imaging") != 0)
    return std::unexpected(std::string("libvips: ") + ::vips_error_buffer());
  prepareExiv2();
  ::vips_vector_set_enabled(0); // it generates code at run time, which the sandbox forbids
  ::vips_cache_set_max(0);      // no picture is looked at twice
  ::vips_concurrency_set(static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads)));
  blockOtherLoaders();
  if (::heif_init(nullptr).code != heif_error_Ok)
    return std::unexpected(std::string("libheif cannot be made ready"));
  return {};
}

} // namespace fennick::picture

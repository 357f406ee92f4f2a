#include "FennickCore/Upload/FileImporter.h"

#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>

#include <system_error>
#include <utility>
#include <vector>

namespace fennick {

namespace {

constexpr std::size_t kChunkBytes = std::size_t{256} << 10; // as large as an upload's

std::unexpected<ImportFault> fault(ImportFault fault) { return std::unexpected(fault); }

ImportFault faultOf(const std::error_code &error) {
  return error == std::errc::no_space_on_device ? ImportFault::noRoom : ImportFault::notSaved;
}

// Translates the response that a phone would receive.
std::expected<void, ImportFault> outcomeOf(const HTTPResponse &answer) {
  switch (answer.status) {
  case 200:
    return {};
  case 400:
    return fault(ImportFault::unreadable); // longer or shorter than when it was opened
  case 415:
    return fault(ImportFault::notMedia);
  default:
    return fault(ImportFault::notSaved);
  }
}

} // namespace

FileImporter::FileImporter(Providers providers, FileSystem &files, IncomingFolder &incoming,
                           const Clock &clock, UploadActivity &activity)
    : providers_(std::move(providers)), files_(files), incoming_(incoming), clock_(clock),
      activity_(activity), allocator_(files) {}

std::expected<void, ImportFault> FileImporter::importFile(const std::filesystem::path &file) {
  auto opened = ReadableFile::open(file, Links::follow);
  const auto size = opened ? opened->size() : std::unexpected(opened.error());
  if (!size)
    return fault(ImportFault::unreadable);
  std::vector<std::byte> chunk(kChunkBytes);
  return bringIn(*size, displayText(file.filename().string()), [&]() -> IOResult<std::span<const std::byte>> {
    const auto count = opened->read(chunk);
    if (!count)
      return std::unexpected(count.error());
    return std::span(chunk).first(*count);
  });
}

std::expected<void, ImportFault> FileImporter::importBytes(std::span<const std::byte> bytes,
                                                           const std::string &name) {
  return bringIn(std::ssize(bytes), name,
                 [&]() -> IOResult<std::span<const std::byte>> { return std::exchange(bytes, {}); });
}

std::expected<void, ImportFault> FileImporter::bringIn(std::int64_t size, const std::string &name,
                                                       const Read &read) {
  if (providers_.isStopped())
    return fault(ImportFault::stopped);
  SaveDestination destination = providers_.destination();
  const auto available = files_.availableBytes(destination.folder);
  if (available && *available - kDiskReserve < size)
    return fault(ImportFault::noRoom);
  auto part = providers_.canSave() ? incoming_.createPart(destination.folder)
                                   : std::unexpected(std::make_error_code(std::errc::no_such_device));
  if (!part) {
    log(fmt::format("cannot write to {}: {}", destination.folder.string(), part.error().message()));
    return fault(faultOf(part.error()));
  }
  UploadSink sink({.part = std::move(*part),
                   .destination = std::move(destination),
                   .expected = size,
                   .mediaType = {},
                   .filename = name,
                   .remote = {},
                   .startedAt = clock_.now(),
                   .source = UploadSource::thisComputer},
                  allocator_, files_, activity_, providers_.onUpload, providers_.pending);
  if (auto filled = fill(sink, size, read); !filled)
    return filled;
  return outcomeOf(sink.finish());
}

std::expected<void, ImportFault> FileImporter::fill(UploadSink &sink, std::int64_t size,
                                                    const Read &read) const {
  for (std::int64_t written = 0;;) {
    if (providers_.isStopped())
      return fault(ImportFault::stopped);
    const auto bytes = read();
    if (!bytes)
      return fault(ImportFault::unreadable);
    if (bytes->empty())
      return {};
    written += std::ssize(*bytes);
    if (written > size) // the file grows while it is read, possibly without an end
      return fault(ImportFault::unreadable);
    if (const auto saved = sink.write(*bytes); !saved)
      return fault(faultOf(saved.error()));
  }
}

} // namespace fennick

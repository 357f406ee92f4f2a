#include "FennickCore/Upload/UploadSink.h"

#include "FennickCore/Platform/System/Log.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>

namespace fennick {

UploadSink::UploadSink(AdmittedUpload upload, NameAllocator &allocator, FileSystem &files,
                       UploadActivity &activity, const std::function<void(const UploadRecord &)> &onUpload,
                       PendingPhotos *pending)
    : upload_(std::move(upload)), allocator_(allocator), files_(files), activity_(activity, upload_.expected),
      onUpload_(onUpload), pending_(pending) {}

// Removes the part file also if the connection ends with an exception.
UploadSink::~UploadSink() { UploadSink::abort(); }

IOResult<void> UploadSink::write(std::span<const std::byte> bytes) {
  const std::size_t kept = std::min(header_.size() - headerBytes_, bytes.size());
  std::ranges::copy(bytes.first(kept), header_.begin() + static_cast<std::ptrdiff_t>(headerBytes_));
  headerBytes_ += kept;
  if (auto result = upload_.part.handle->write(bytes); !result) {
    log(fmt::format("cannot write {}: {}", upload_.part.file.string(), result.error().message()));
    upload_.attempt.answered(
        HTTPResponse::text(500, "write failed")); // the response that the connection sends
    return result;
  }
  written_ += std::ssize(bytes);
  activity_.received(std::ssize(bytes));
  upload_.attempt.received(std::ssize(bytes));
  return {};
}

HTTPResponse UploadSink::finish() {
  HTTPResponse response = complete();
  upload_.attempt.answered(response);
  if (response.status == 200)
    announce();
  return response;
}

HTTPResponse UploadSink::complete() {
  if (written_ != upload_.expected)
    return refuse(400, "传输不完整 / incomplete body");
  const auto extension =
      FileTypeSniffer::resolve(std::span(header_).first(headerBytes_), upload_.mediaType, upload_.filename);
  if (!extension)
    return refuse(415, "不支持的文件类型，只接收照片和视频 / Unsupported file type; photos and videos only");

  if (auto synced = syncContent(); !synced) {
    log(fmt::format("cannot save {}: {}", upload_.part.file.string(), synced.error().message()));
    return refuse(500, "保存失败 / save failed");
  }
  if (const auto placed = place(*extension); !placed) {
    log(fmt::format("cannot place {}: {}", upload_.part.file.string(), placed.error().message()));
    return refuse(500, "保存失败 / save failed");
  }
  finished_ = true;
  return HTTPResponse::text(200, record_.url.filename().string());
}

IOResult<void> UploadSink::place(const std::string &extension) {
  record_ = {.url = {},
             .saveFolder = upload_.destination.folder,
             .bytes = written_,
             .remoteAddress = upload_.remote,
             .mediaType = upload_.mediaType,
             .filename = upload_.filename,
             .receivedAt = upload_.startedAt,
             .source = upload_.source};
  std::optional<PendingPhotos::Arrival> arrival;
  if (pending_ != nullptr)
    arrival.emplace(
        *pending_,
        PendingPhotos::Arriving{.upload = record_, .partFile = upload_.part.file, .hold = upload_.part.hold});
  const auto willAppear = [&](const std::filesystem::path &file) {
    upload_.attempt.willAppear(upload_.part.file, file);
    return arrival ? arrival->willAppear(file) : IOResult<void>();
  };
  const auto placed =
      allocator_.place(upload_.part.file, upload_.destination, extension, upload_.startedAt, willAppear);
  if (!placed)
    return std::unexpected(placed.error());
  record_.url = *placed;
  if (arrival)
    record_.pending = arrival->complete();
  return {};
}

// The photo is safe at this point: nothing that observers do changes the response to the phone.
void UploadSink::announce() {
  try {
    onUpload_(record_);
  } catch (const std::exception &error) {
    log(error.what());
  }
}

// Syncs the content before the file is moved into place, so that the final name never refers to a file that a
// power cut could empty.
IOResult<void> UploadSink::syncContent() {
  auto synced = upload_.part.handle->sync();
  auto closed = upload_.part.handle->close();
  upload_.part.handle.reset();
  return synced ? closed : synced;
}

HTTPResponse UploadSink::refuse(std::int64_t status, std::string_view text) {
  UploadSink::abort();
  return HTTPResponse::text(status, text);
}

void UploadSink::abort() {
  if (finished_)
    return;
  finished_ = true;
  upload_.part.handle.reset();
  [[maybe_unused]] const auto ignored = files_.remove(upload_.part.file);
}

} // namespace fennick

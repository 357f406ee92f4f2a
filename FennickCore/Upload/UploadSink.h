#pragma once

#include "FennickCore/HTTP/HTTPRequestHandler.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/NameAllocator.h"
#include "FennickCore/Storage/SaveDestination.h"
#include "FennickCore/Upload/FileTypeSniffer.h"
#include "FennickCore/Upload/IncomingFolder.h"
#include "FennickCore/Upload/PendingPhotos.h"
#include "FennickCore/Upload/UploadActivity.h"
#include "FennickCore/Upload/UploadOutcomes.h"
#include "FennickCore/Upload/UploadRecord.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace fennick {

// What is known about an upload when it is admitted.
struct AdmittedUpload {
  IncomingPart part;
  SaveDestination destination; // as of the admission
  std::int64_t expected = 0;   // declared length of the body
  std::optional<std::string> mediaType;
  std::optional<std::string> filename; // the file name that the sender gives
  std::string remote;                  // its address; empty for this computer
  Instant startedAt;
  UploadSource source = UploadSource::phone;
  UploadOutcomes::Attempt attempt{}; // receives the outcome
};

// Receives the body of one upload into its part file and turns it into a saved photo or video. Only the first
// bytes are kept in memory, to determine the type. On every failure the part file is deleted and the phone
// receives an error; "200" is sent only after the file is on the disk under its final name.
//
// Belongs to one connection and is called on its thread. Allocator, file system, activity, `onUpload` and
// `pending` are borrowed and outlive it.
class UploadSink final : public HTTPBodySink {
public:
  // `pending` is null if photos are not tracked after the upload.
  UploadSink(AdmittedUpload upload, NameAllocator &allocator, FileSystem &files, UploadActivity &activity,
             const std::function<void(const UploadRecord &)> &onUpload, PendingPhotos *pending);
  ~UploadSink() override;

  IOResult<void> write(std::span<const std::byte> bytes) override;
  HTTPResponse finish() override;
  void abort() override;

private:
  [[nodiscard]] HTTPResponse complete();
  [[nodiscard]] HTTPResponse refuse(std::int64_t status, std::string_view text);
  [[nodiscard]] IOResult<void> syncContent();
  [[nodiscard]] IOResult<void> place(const std::string &extension);
  void announce();

  AdmittedUpload upload_;
  NameAllocator &allocator_;
  FileSystem &files_;
  UploadActivity::Upload activity_;
  const std::function<void(const UploadRecord &)> &onUpload_;
  PendingPhotos *pending_;
  std::array<std::byte, FileTypeSniffer::kHeaderBytes> header_{};
  std::size_t headerBytes_ = 0;
  UploadRecord record_; // from `place` on
  std::int64_t written_ = 0;
  bool finished_ = false;
};

} // namespace fennick

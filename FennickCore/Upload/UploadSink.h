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

// What is known of an upload when it is admitted.
struct AdmittedUpload {
  IncomingPart part;
  SaveDestination destination; // as it stood at admission
  std::int64_t expected = 0;   // declared length of the body
  std::optional<std::string> mediaType;
  std::optional<std::string> filename; // what the sender calls the file
  std::string remote;                  // its address; empty for this computer
  Instant startedAt;
  UploadSource source = UploadSource::phone;
  UploadOutcomes::Attempt attempt{}; // learns the outcome
};

// Receives the body of one upload into its part file and turns it into a saved photo or video. The body is
// never held in memory: only the first bytes are kept, to tell the type. Whatever fails, the part file is
// deleted and the phone is told; "200" is answered only once the file is on the disk under its final name.
//
// Belongs to one connection and is called on its thread. Allocator, file system, activity, `onUpload` and
// `pending` are borrowed and outlive it.
class UploadSink final : public HTTPBodySink {
public:
  // `pending` is null where nothing follows an upload.
  UploadSink(AdmittedUpload upload, NameAllocator &allocator, FileSystem &files, UploadActivity &activity,
             const std::function<void(const UploadRecord &)> &onUpload, PendingPhotos *pending);
  ~UploadSink() override;

  IOResult<void> write(std::span<const std::byte> bytes) override;
  HTTPResponse finish() override;
  void abort() override;

private:
  [[nodiscard]] HTTPResponse complete();
  [[nodiscard]] HTTPResponse refuse(std::int64_t status, std::string_view text);
  [[nodiscard]] IOResult<void> settle();
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

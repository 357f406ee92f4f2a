#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace fennick {

// Who sends a file.
enum class UploadSource { phone, thisComputer };

// What a finished upload reports.
struct UploadRecord {
  std::filesystem::path url{}; // the saved file under its final name
  std::filesystem::path
      saveFolder{}; // the save folder of the file; its incoming folder is held during the call
  std::int64_t bytes = 0;
  std::string remoteAddress{};
  std::optional<std::string> mediaType{}; // as declared in the request
  std::optional<std::string> filename{};  // what the sender calls the file
  Instant receivedAt{};                   // when the upload was admitted
  UploadSource source = UploadSource::phone;
  std::string pending{}; // its entry in PendingPhotos; empty if it has none

  bool operator==(const UploadRecord &) const = default;
};

} // namespace fennick

#pragma once

#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Storage/SaveDestination.h"
#include "FennickCore/Upload/UploadRouter.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quarrow {

// The current configuration of the upload router: written by the coordinator on the main thread, all values
// at once, and read by the server's connections for each request. Any thread; guarded by its own lock.
class RouterConfig {
public:
  struct Values {
    std::string key; // the access key the router accepts
    fennick::SaveDestination destination;
    std::int64_t maxBytes = 0;                    // most bytes of one upload
    std::optional<std::filesystem::path> gallery; // the folder the gallery shows; absent while it is off
    fennick::UploadRouter::UploadPolicy policy;
    std::filesystem::path drive{}; // that the save folder lies on (see SaveFolderDrive.h); empty: unknown
  };

  // Replaces all values at once. A request in progress may have read some of them before.
  void update(Values values);

  [[nodiscard]] std::string key() const;
  // Returns whether `key` is one of the last few access keys before the current one.
  [[nodiscard]] bool wasKey(std::string_view key) const;
  [[nodiscard]] fennick::SaveDestination destination() const;
  [[nodiscard]] std::int64_t maxBytes() const;
  [[nodiscard]] std::optional<std::filesystem::path> gallery() const;
  [[nodiscard]] fennick::UploadRouter::UploadPolicy policy() const;
  // Returns false while the drive of the save folder is unplugged. Reads the file system.
  [[nodiscard]] bool canSave() const;

private:
  mutable fennick::Mutex lock_;
  Values values_ GUARDED_BY(lock_);
  std::deque<std::string> formerKeys_ GUARDED_BY(lock_);
};

} // namespace quarrow

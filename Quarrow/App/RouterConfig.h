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

// The live configuration of the upload router: written by the coordinator on the main thread, all values in
// one step, and read by the server's connections for each request. Any thread; guarded by its own lock.
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

  // All values change in one step; a request under way may have read some of them before it.
  void update(Values values);

  [[nodiscard]] std::string key() const;
  // Whether `key` is one of the last few access keys before the present one.
  [[nodiscard]] bool wasKey(std::string_view key) const;
  [[nodiscard]] fennick::SaveDestination destination() const;
  [[nodiscard]] std::int64_t maxBytes() const;
  [[nodiscard]] std::optional<std::filesystem::path> gallery() const;
  [[nodiscard]] fennick::UploadRouter::UploadPolicy policy() const;
  // False while the drive of the save folder is unplugged. Looks at the file system.
  [[nodiscard]] bool canSave() const;

private:
  mutable fennick::Mutex lock_;
  Values values_ GUARDED_BY(lock_);
  std::deque<std::string> formerKeys_ GUARDED_BY(lock_);
};

} // namespace quarrow

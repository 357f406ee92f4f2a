#pragma once

#include "FennickCore/Upload/UploadActivity.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace quarrow {

// What the receiver tells the outside. Main thread.
class Report {
public:
  struct Listening {
    std::uint16_t port;
    std::uint16_t preferredPort;
    std::string accessKey;
    std::optional<std::string> phoneURL;  // none without a usable address
    std::optional<std::string> uploadURL; // none without a usable address
    std::filesystem::path saveFolder;
  };

  struct Received {
    std::string name;
    std::filesystem::path path;
    std::int64_t bytes;
    std::string note; // one line about the file
  };

  virtual ~Report() = default;
  virtual void listening(const Listening &state) = 0;
  virtual void received(const Received &file) = 0;
  virtual void error(const std::string &message) = 0;
  // Whether `progress` should be called while uploads are under way.
  [[nodiscard]] virtual bool showsProgress() const = 0;
  // `bytesPerSecond` over the last moments. No uploads under way: take the line away.
  virtual void progress(const fennick::UploadActivity::Snapshot &activity, double bytesPerSecond) = 0;
};

} // namespace quarrow

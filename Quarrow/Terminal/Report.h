#pragma once

#include "FennickCore/Network/FirewallFinding.h"
#include "FennickCore/Upload/UploadActivity.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace quarrow {

// The output of the terminal program, as text or as events. Main thread.
class Report {
public:
  struct Listening {
    std::uint16_t port;
    std::uint16_t preferredPort;
    std::string accessKey;
    std::optional<std::string> phoneURL;  // none without a usable address
    std::optional<std::string> uploadURL; // nullopt without a usable address
    std::filesystem::path saveFolder;

    bool operator==(const Listening &) const = default;
  };
  // Why the address is reported again.
  enum class Reason { started, address, port, key, folder, asked };

  struct Received {
    std::string name;
    std::filesystem::path path;
    std::int64_t bytes;
    std::string note; // one line about the file
  };

  // Whether the service answers at its address.
  struct Check {
    bool passed;
    std::string message; // why not
    bool operator==(const Check &) const = default;
  };

  virtual ~Report() = default;
  // Each call replaces the state of the previous one.
  virtual void listening(const Listening &state, Reason reason) = 0;
  virtual void received(const Received &file) = 0;
  virtual void error(const std::string &message) = 0;
  // All errors are resolved.
  virtual void errorsSolved() = 0;
  virtual void check(const Check &result) = 0;
  // A firewall may block phones.
  virtual void firewall(const fennick::FirewallFinding &finding) = 0;
  // The number of received photos that wait for their processing; 0 after the last one.
  virtual void waiting(int photos) = 0;
  // Text for a user at the terminal only.
  virtual void notice(const std::string &lines) = 0;
  virtual void bell() = 0;
  // Returns whether `progress` should be called during uploads.
  [[nodiscard]] virtual bool showsProgress() const = 0;
  // `bytesPerSecond` is an average over the last moments. Removes the progress line if there are no uploads.
  virtual void progress(const fennick::UploadActivity::Snapshot &activity, double bytesPerSecond) = 0;
};

} // namespace quarrow

#pragma once

#include "FennickCore/Network/FirewallFinding.h"
#include "FennickCore/Upload/UploadActivity.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace quarrow {

// What the terminal program tells the outside, as words or as events. Main thread.
class Report {
public:
  struct Listening {
    std::uint16_t port;
    std::uint16_t preferredPort;
    std::string accessKey;
    std::optional<std::string> phoneURL;  // none without a usable address
    std::optional<std::string> uploadURL; // none without a usable address
    std::filesystem::path saveFolder;

    bool operator==(const Listening &) const = default;
  };
  // Why phones are told anew where to go.
  enum class Reason { started, address, port, key, folder, asked };

  struct Received {
    std::string name;
    std::filesystem::path path;
    std::int64_t bytes;
    std::string note; // one line about the file
  };

  // Whether the service answers under its address.
  struct Check {
    bool passed;
    std::string message; // why not
    bool operator==(const Check &) const = default;
  };

  virtual ~Report() = default;
  // The latest call counts.
  virtual void listening(const Listening &state, Reason reason) = 0;
  virtual void received(const Received &file) = 0;
  virtual void error(const std::string &message) = 0;
  // Nothing is wrong any more.
  virtual void errorsSolved() = 0;
  virtual void check(const Check &result) = 0;
  // A firewall that may keep phones out.
  virtual void firewall(const fennick::FirewallFinding &finding) = 0;
  // How many received photos wait for their processing; 0 once none does.
  virtual void waiting(int photos) = 0;
  // Lines that only a person in front of the terminal needs.
  virtual void notice(const std::string &lines) = 0;
  virtual void bell() = 0;
  // Whether `progress` should be called while uploads are under way.
  [[nodiscard]] virtual bool showsProgress() const = 0;
  // `bytesPerSecond` over the last moments. No uploads under way: take the line away.
  virtual void progress(const fennick::UploadActivity::Snapshot &activity, double bytesPerSecond) = 0;
};

} // namespace quarrow

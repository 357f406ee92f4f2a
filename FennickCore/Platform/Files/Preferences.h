#pragma once

#include <nlohmann/json_fwd.hpp>

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace fennick {

// The user's preferences: a few named values that survive a restart. Main thread.
class Preferences {
public:
  virtual ~Preferences() = default;
  [[nodiscard]] virtual std::optional<std::string> text(std::string_view key) const = 0;
  [[nodiscard]] virtual bool flag(std::string_view key) const = 0; // false when it is not there

  // Written through at once. On failure nothing changed on the disk, but `text` and `flag` give the new value
  // for the rest of the run.
  virtual std::expected<void, std::error_code> setText(std::string_view key, std::string_view value) = 0;
  virtual std::expected<void, std::error_code> setFlag(std::string_view key, bool value) = 0;
};

// Preferences in one JSON object on the disk, readable by the user alone (mode 0600) and replaced atomically
// on each write, so that a power cut leaves the old or the new file. Several programs may use one file: each
// write reads it anew and sets only the keys that were set here, so that what others stored stays.
class FilePreferences final : public Preferences {
public:
  // A missing file is an empty one. One that cannot be read or is no JSON object counts as empty too. What
  // stands in the file's place and cannot be used, whatever it is and whenever it came there, is kept beside
  // as "<name>.damaged" ("<name>.damaged-2" and so on when that is taken) before a write puts a file there
  // with everything known here. A link stays; what it leads to is read and replaced. Temporary files that a
  // killed program left beside it are removed.
  explicit FilePreferences(std::filesystem::path file);
  ~FilePreferences() override;

  [[nodiscard]] std::optional<std::string> text(std::string_view key) const override;
  [[nodiscard]] bool flag(std::string_view key) const override;
  // A value that could not be stored is stored with the next one that can be.
  std::expected<void, std::error_code> setText(std::string_view key, std::string_view value) override;
  std::expected<void, std::error_code> setFlag(std::string_view key, bool value) override;

private:
  std::expected<void, std::error_code> set(std::string_view key, nlohmann::ordered_json value);
  std::expected<void, std::error_code> write();

  std::filesystem::path file_;
  std::unique_ptr<nlohmann::ordered_json> values_;  // as last read or written, and what was set since
  std::unique_ptr<nlohmann::ordered_json> pending_; // what was set and is not on the disk yet
};

} // namespace fennick

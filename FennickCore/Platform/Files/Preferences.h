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
  [[nodiscard]] virtual bool flag(std::string_view key) const = 0; // false if it is missing

  // Stores the value at once. If that fails, the file is unchanged, but `text` and `flag` return the new
  // value for the rest of the run.
  virtual std::expected<void, std::error_code> setText(std::string_view key, std::string_view value) = 0;
  virtual std::expected<void, std::error_code> setFlag(std::string_view key, bool value) = 0;
};

// Preferences in one JSON object on the disk, readable by the user alone (mode 0600) and replaced atomically
// on each write, so that a power cut leaves the old or the new file. Several programs may share a file: each
// write reads it again and sets only the keys that this object set, so that values of others stay.
class FilePreferences final : public Preferences {
public:
  // A missing or unreadable file and one that is not a JSON object count as empty. Content that cannot be
  // used is kept as "<name>.damaged" ("<name>.damaged-2" and so on) before the first write replaces it. If
  // the file is a link, its target is read and replaced. Removes temporary files that a killed program left.
  explicit FilePreferences(std::filesystem::path file);
  ~FilePreferences() override;

  [[nodiscard]] std::optional<std::string> text(std::string_view key) const override;
  [[nodiscard]] bool flag(std::string_view key) const override;
  // A value that could not be stored is stored together with the next one.
  std::expected<void, std::error_code> setText(std::string_view key, std::string_view value) override;
  std::expected<void, std::error_code> setFlag(std::string_view key, bool value) override;

private:
  std::expected<void, std::error_code> set(std::string_view key, nlohmann::ordered_json value);
  std::expected<void, std::error_code> write();

  std::filesystem::path file_;
  std::unique_ptr<nlohmann::ordered_json> values_;  // as last read or written, and what was set since
  std::unique_ptr<nlohmann::ordered_json> pending_; // values that were set and are not on the disk yet
};

} // namespace fennick

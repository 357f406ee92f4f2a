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
// on each write, so that a power cut leaves the old or the new file. Keys this program does not know are
// kept.
class FilePreferences final : public Preferences {
public:
  // A missing file is an empty one. One that cannot be read or is no JSON object counts as empty too; before
  // the first write over it, it is kept beside as "<name>.damaged". A link stays; what it
  // leads to is read and replaced.
  explicit FilePreferences(std::filesystem::path file);
  ~FilePreferences() override;

  [[nodiscard]] std::optional<std::string> text(std::string_view key) const override;
  [[nodiscard]] bool flag(std::string_view key) const override;
  std::expected<void, std::error_code> setText(std::string_view key, std::string_view value) override;
  std::expected<void, std::error_code> setFlag(std::string_view key, bool value) override;

private:
  std::expected<void, std::error_code> save();
  std::expected<void, std::error_code> write();

  std::filesystem::path file_;
  std::unique_ptr<nlohmann::ordered_json> values_;
  bool damaged_ = false;
};

} // namespace fennick

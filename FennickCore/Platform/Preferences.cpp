#include "FennickCore/Platform/Preferences.h"

#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/Log.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace fennick {

using Json = nlohmann::ordered_json;

FilePreferences::FilePreferences(std::filesystem::path file)
    : file_(std::move(file)), values_(std::make_unique<Json>(Json::object())) {
  const auto stored = readFile(file_);
  if (!stored && stored.error() == std::errc::no_such_file_or_directory)
    return;
  Json parsed = Json::parse(stored.value_or(""), nullptr, false);
  if (parsed.is_object()) {
    *values_ = std::move(parsed);
    return;
  }
  damaged_ = true;
  log(fmt::format("preferences cannot be read ({}), starting with defaults: {}",
                  stored ? "damaged" : stored.error().message(), file_.string()));
}

FilePreferences::~FilePreferences() = default;

std::optional<std::string> FilePreferences::text(std::string_view key) const {
  const auto found = values_->find(key);
  if (found == values_->end() || !found->is_string())
    return std::nullopt;
  return found->get<std::string>();
}

bool FilePreferences::flag(std::string_view key) const {
  const auto found = values_->find(key);
  return found != values_->end() && found->is_boolean() && found->get<bool>();
}

std::expected<void, std::error_code> FilePreferences::setText(std::string_view key, std::string_view value) {
  (*values_)[std::string(key)] = std::string(value);
  return save();
}

std::expected<void, std::error_code> FilePreferences::setFlag(std::string_view key, bool value) {
  (*values_)[std::string(key)] = value;
  return save();
}

std::expected<void, std::error_code> FilePreferences::save() {
  auto saved = write();
  if (!saved)
    log(fmt::format("preferences could not be saved: {}", saved.error().message()));
  return saved;
}

std::expected<void, std::error_code> FilePreferences::write() {
  SystemFileSystem files;
  if (auto made = files.createDirectories(file_.parent_path()); !made)
    return made;
  if (damaged_) {
    auto aside = file_;
    aside += ".damaged";
    if (auto kept = files.replace(file_, aside); !kept)
      return kept;
    damaged_ = false;
  }
  return replaceFile(file_, values_->dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

} // namespace fennick

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
  if (!stored)
    return;
  Json parsed = Json::parse(*stored, nullptr, false);
  if (parsed.is_object()) {
    *values_ = std::move(parsed);
    return;
  }
  damaged_ = true;
  log(fmt::format("preferences are damaged, starting with defaults: {}", file_.string()));
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
  const std::string text = values_->dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  auto written = replaceFile(file_, text);
  if (!written)
    log(fmt::format("preferences could not be saved: {}", written.error().message()));
  return written;
}

} // namespace fennick

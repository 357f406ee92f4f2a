#include "FennickCore/Platform/Files/Preferences.h"

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/System/Random.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <string_view>
#include <tuple>

namespace fennick {

using Json = nlohmann::ordered_json;

namespace fs = std::filesystem;

namespace {

// Returns EBADMSG if the file is not a JSON object.
IOResult<Json> readObject(const fs::path &file) {
  const auto stored = readFile(file);
  if (!stored)
    return std::unexpected(stored.error());
  Json parsed = Json::parse(*stored, nullptr, false);
  if (!parsed.is_object())
    return std::unexpected(std::make_error_code(std::errc::bad_message));
  return parsed;
}

// Returns whether the content of the file can never be read as preferences, unlike after an error of the disk
// that may pass.
bool isUnusable(const std::error_code &error) {
  return error == std::errc::bad_message || error == std::errc::invalid_argument || // no regular file
         error == std::errc::permission_denied || error == std::errc::too_many_symbolic_link_levels;
}

fs::path withoutLinks(const fs::path &file) {
  std::error_code missing;
  const fs::path target = fs::canonical(file, missing);
  return missing ? file : target;
}

// Removes "<name>.<UUID>.tmp" files, which a killed program leaves behind while writing. Programs that are
// writing hold the same lock as `FilePreferences::write`.
void removeTemporaries(const fs::path &file) {
  const fs::path target = withoutLinks(file);
  const auto lock =
      DirectoryLock::tryLock(withoutLinks(target.parent_path()), DirectoryLock::Mode::exclusive);
  SystemFileSystem files;
  const auto entries = lock ? files.list(target.parent_path()) : std::unexpected(lock.error());
  if (!entries)
    return;
  const std::string prefix = target.filename().string() + ".";
  constexpr std::string_view kSuffix = ".tmp";
  for (const auto &[name, kind] : *entries) {
    std::string_view middle = name;
    if (kind != FileKind::regular || !middle.starts_with(prefix) || !middle.ends_with(kSuffix))
      continue;
    middle.remove_prefix(prefix.size());
    if (middle.size() > kSuffix.size() && isUUID(middle.substr(0, middle.size() - kSuffix.size())))
      std::ignore = files.remove(target.parent_path() / name);
  }
}

IOResult<void> putAside(FileSystem &files, const fs::path &file) {
  fs::path aside = file;
  aside += ".damaged";
  auto moved = files.moveNoReplace(file, aside);
  for (int number = 2; !moved && moved.error() == std::errc::file_exists; ++number) {
    aside = file;
    aside += fmt::format(".damaged-{}", number);
    moved = files.moveNoReplace(file, aside);
  }
  if (moved)
    log(fmt::format("preferences cannot be used, kept as {}", aside.string()));
  return moved;
}

} // namespace

FilePreferences::FilePreferences(fs::path file)
    : file_(std::move(file)), values_(std::make_unique<Json>(Json::object())),
      pending_(std::make_unique<Json>(Json::object())) {
  removeTemporaries(file_);
  auto stored = readObject(file_);
  if (stored)
    *values_ = std::move(*stored);
  else if (stored.error() != std::errc::no_such_file_or_directory)
    log(fmt::format("preferences cannot be read ({}), starting with defaults: {}", stored.error().message(),
                    file_.string()));
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
  return set(key, std::string(value));
}

std::expected<void, std::error_code> FilePreferences::setFlag(std::string_view key, bool value) {
  return set(key, value);
}

std::expected<void, std::error_code> FilePreferences::set(std::string_view key, Json value) {
  (*values_)[std::string(key)] = value;
  (*pending_)[std::string(key)] = std::move(value);
  auto saved = write();
  if (!saved)
    log(fmt::format("preferences could not be saved: {}", saved.error().message()));
  return saved;
}

std::expected<void, std::error_code> FilePreferences::write() {
  SystemFileSystem files;
  if (auto made = files.createDirectories(file_.parent_path()); !made)
    return made;
  const fs::path target = withoutLinks(file_);
  // Prevents other instances from writing between our read and our write. Without support for locks it
  // continues unlocked.
  const auto lock = DirectoryLock::lock(withoutLinks(target.parent_path()), DirectoryLock::Mode::exclusive);
  Json written = *values_;
  if (auto stored = readObject(target)) {
    written = std::move(*stored);
    written.update(*pending_);
  } else if (isUnusable(stored.error())) {
    if (auto kept = putAside(files, target); !kept)
      return kept;
  } else if (stored.error() != std::errc::no_such_file_or_directory) {
    return std::unexpected(stored.error());
  }
  if (auto saved = replaceFile(target, written.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
      !saved)
    return saved;
  *values_ = std::move(written);
  pending_->clear();
  return {};
}

} // namespace fennick

#include "FennickCore/Storage/ThumbnailStore.h"

#include "FennickCore/Platform/Files/AsideFile.h"
#include "FennickCore/Storage/Leftovers.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <glib.h>

#include <algorithm>
#include <memory>
#include <tuple>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestName = 255; // bytes, on every Linux file system
constexpr std::string_view kExtension = ".jpg";
// Length of "-<bytes>-<modified>-<pixels>.jpg" with the longest numbers.
constexpr std::size_t kLongestEnding = 70;
constexpr std::int64_t kBlock = 4096; // the least space that file systems allocate for a file

// Returns whether the data begins and ends like a JPEG. A file that a crash truncated or filled with zeros
// does not.
bool isWholeJPEG(std::string_view data) {
  return data.size() > 4 && data.starts_with("\xFF\xD8") && data.ends_with("\xFF\xD9");
}

bool isKept(gunichar character) {
  return character == '-' || character == '.' || character == '_' || g_unichar_isalnum(character) != FALSE;
}

// Keeps letters and digits of every script and replaces everything else by "_".
std::string plainText(const std::string &path) {
  std::string plain;
  const char *next = nullptr;
  for (const char *at = path.c_str(); *at != '\0'; at = next) {
    next = g_utf8_next_char(at);
    if (isKept(g_utf8_get_char(at)))
      plain.append(at, next);
    else
      plain += '_';
  }
  return plain;
}

std::string checksum(const std::string &text) {
  const std::unique_ptr<gchar, decltype(&g_free)> sum(
      ::g_compute_checksum_for_string(G_CHECKSUM_SHA256, text.data(), std::ssize(text)), &g_free);
  return sum.get();
}

// Removes the number after the last "-" from the end of `text` and returns it; a negative number follows two
// of them.
std::optional<std::int64_t> takeNumber(std::string_view &text) {
  const auto dash = text.rfind('-');
  if (dash == std::string_view::npos)
    return std::nullopt;
  const bool isNegative = dash > 0 && text[dash - 1] == '-';
  const auto number = signedDecimal(text.substr(isNegative ? dash : dash + 1));
  text = text.substr(0, isNegative ? dash - 1 : dash);
  return number;
}

} // namespace

PhotoVersion versionOf(const FileStatus &status) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(status.modified.time_since_epoch());
  return {.bytes = status.bytes, .modified = seconds.count()};
}

ThumbnailStore::ThumbnailStore(FileSystem &files, fs::path folder, std::int64_t maxPixel)
    : files_(files), folder_(std::move(folder)), maxPixel_(maxPixel) {
  std::ignore = files_.createDirectories(folder_);
  clearThumbnailLeftovers(folder_, files_);
}

std::optional<std::string> ThumbnailStore::read(const fs::path &photo, PhotoVersion version) const {
  const fs::path file = fileOf(photo, version);
  auto data = readFile(file);
  if (!data || !isWholeJPEG(*data))
    return std::nullopt;
  std::ignore = setModificationTime(file, SystemClock().now());
  return std::move(*data);
}

bool ThumbnailStore::write(const fs::path &photo, PhotoVersion version, std::string_view data) const {
  const FolderUse use(folder_);
  const fs::path aside = temporaryIn(folder_, Temporary::thumbnail);
  if (!writeAside(files_, aside, data, Durability::asTheSystemLikes))
    return false;
  if (files_.replace(aside, fileOf(photo, version)))
    return true;
  std::ignore = files_.remove(aside);
  return false;
}

void ThumbnailStore::remove(const fs::path &photo, PhotoVersion version) const {
  std::ignore = files_.remove(fileOf(photo, version));
}

void ThumbnailStore::remove(const Entry &entry) const { std::ignore = files_.remove(folder_ / entry.name); }

void ThumbnailStore::clear() const {
  if (const auto entries = files_.list(folder_))
    for (const auto &entry : *entries)
      if (entry.kind == FileKind::regular)
        std::ignore = files_.remove(folder_ / entry.name);
  std::ignore = files_.createDirectories(folder_);
}

std::vector<ThumbnailStore::Entry> ThumbnailStore::entries() const {
  const auto files = readFolder(folder_, Links::follow, [](std::string_view name, FileKind kind) {
    return kind == FileKind::regular && !name.starts_with('.');
  });
  std::vector<Entry> entries;
  if (!files)
    return entries;
  for (const auto &file : *files)
    if (auto entry = parsed(file))
      entries.push_back(std::move(*entry));
    else
      std::ignore = files_.remove(folder_ / file.name);
  return entries;
}

std::optional<ThumbnailStore::Entry> ThumbnailStore::parsed(const FolderEntry &file) const {
  std::string_view rest = file.name;
  if (!rest.ends_with(kExtension))
    return std::nullopt;
  rest.remove_suffix(kExtension.size());
  const auto pixels = takeNumber(rest);
  const auto modified = takeNumber(rest);
  const auto bytes = takeNumber(rest);
  if (pixels != maxPixel_ || !modified || !bytes || rest.empty())
    return std::nullopt;
  return Entry{.name = file.name,
               .photo = std::string(rest),
               .version = {.bytes = *bytes, .modified = *modified},
               .bytes = (file.status.bytes + kBlock - 1) / kBlock * kBlock,
               .used = file.status.modified};
}

std::vector<std::string> ThumbnailStore::namesOf(const fs::path &photo) {
  std::vector<std::string> names;
  if (isValidUTF8(photo.native()))
    names.push_back(plainText(photo.native()));
  if (names.empty() || names.front().size() + kLongestEnding > kLongestName)
    names.push_back(checksum(photo.native()));
  return names;
}

std::string ThumbnailStore::prefixOf(const fs::path &folder) {
  return plainText(isValidUTF8(folder.native()) ? (folder / "").native() : std::string());
}

// The checksum covers the path only, so that all versions of a photo can be found.
fs::path ThumbnailStore::fileOf(const fs::path &photo, PhotoVersion version) const {
  const std::string ending =
      fmt::format("-{}-{}-{}{}", version.bytes, version.modified, maxPixel_, kExtension);
  const auto names = namesOf(photo);
  return folder_ /
         ((names.front().size() + ending.size() > kLongestName ? names.back() : names.front()) + ending);
}

} // namespace fennick

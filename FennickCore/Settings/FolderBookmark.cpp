#include "FennickCore/Settings/FolderBookmark.h"

#include "FennickCore/Platform/Files/Directories.h"
#include "FennickCore/Platform/Files/FileSystem.h"

#include <fmt/format.h>

namespace fennick {

namespace {

constexpr const char *kFolderName = "fennick";

using Kind = BookmarkError::Kind;

std::unexpected<BookmarkError> failure(Kind kind, std::error_code cause = {}) {
  return std::unexpected(BookmarkError{kind, cause});
}

std::expected<void, BookmarkError> look(const std::filesystem::path &url) {
  const auto identity = fileIdentity(url);
  if (identity)
    return {};
  const std::error_code cause = identity.error();
  const bool gone = cause == std::errc::no_such_file_or_directory || cause == std::errc::not_a_directory;
  return failure(gone ? Kind::notFound : Kind::unreachable, cause);
}

std::string textOf(std::span<const std::byte> bytes) {
  std::string text;
  for (const std::byte byte : bytes)
    text += static_cast<char>(byte);
  return text;
}

} // namespace

std::string BookmarkError::description() const {
  switch (kind) {
  case Kind::notAPath:
    return "记录的位置无效";
  case Kind::notFound:
    return "该位置已不存在";
  case Kind::unreachable:
    return fmt::format("无法访问该位置（{}）", cause.message());
  }
  return {};
}

std::expected<BookmarkData, BookmarkError> FolderBookmark::make(const std::filesystem::path &url) {
  std::error_code refused;
  const std::filesystem::path path = std::filesystem::absolute(url, refused).lexically_normal();
  if (refused || path.native().contains('\0'))
    return failure(Kind::notAPath, refused);
  if (auto found = look(path); !found)
    return std::unexpected(found.error());
  const auto bytes = std::as_bytes(std::span(path.native()));
  return BookmarkData(bytes.begin(), bytes.end());
}

std::expected<FolderBookmark::Resolved, BookmarkError>
FolderBookmark::resolve(std::span<const std::byte> bookmark) {
  const std::filesystem::path path = textOf(bookmark);
  if (!path.is_absolute() || path.native().contains('\0'))
    return failure(Kind::notAPath);
  if (auto found = look(path); !found)
    return std::unexpected(found.error());
  return Resolved{.url = path, .stale = false};
}

std::filesystem::path FolderBookmark::defaultFolder() { return picturesDirectory() / kFolderName; }

} // namespace fennick

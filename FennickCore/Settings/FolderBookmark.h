#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace fennick {

// What is stored to find a folder or an application again: the bytes of its absolute path, without a NUL.
using BookmarkData = std::vector<std::byte>;

struct BookmarkError {
  enum class Kind {
    notAPath,    // the bytes are no absolute path; choose the folder again
    notFound,    // nothing is there any more
    unreachable, // the system refuses to look; `cause` says why
  };
  Kind kind = Kind::notFound;
  std::error_code cause;

  // For people, in Chinese, without a full stop: "该位置已不存在".
  [[nodiscard]] std::string description() const;
};

// Bookmarks of the save folder and of the application that opens received files. Links are followed, and what
// the bookmark leads to is looked at, not opened. Any thread.
namespace FolderBookmark {

struct Resolved {
  std::filesystem::path url;
  bool stale = false; // make the bookmark again; never the case with paths
};

// A relative path is taken from the current directory. `url` must exist.
[[nodiscard]] std::expected<BookmarkData, BookmarkError> make(const std::filesystem::path &url);
[[nodiscard]] std::expected<Resolved, BookmarkError> resolve(std::span<const std::byte> bookmark);

// "fennick" in the user's pictures folder. Not created here. Main thread.
[[nodiscard]] std::filesystem::path defaultFolder();

} // namespace FolderBookmark

} // namespace fennick

#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace fennick {

// The stored reference to a folder or an application: the bytes of its absolute path, without a NUL.
using BookmarkData = std::vector<std::byte>;

struct BookmarkError {
  enum class Kind {
    notAPath,    // the bytes are no absolute path; choose the folder again
    notFound,    // nothing is there any more
    unreachable, // the system refused access; `cause` says why
  };
  Kind kind = Kind::notFound;
  std::error_code cause;

  // Returns a message for the user, in Chinese, without a full stop: "该位置已不存在".
  [[nodiscard]] std::string description() const;
};

// Bookmarks of the save folder and of the application that opens received files. Links are followed; the
// target is examined but not opened. Any thread.
namespace FolderBookmark {

struct Resolved {
  std::filesystem::path url;
  bool stale = false; // the bookmark has to be made again; never true for paths
};

// Makes a bookmark of `url`, which must exist. A relative path is resolved against the current directory.
[[nodiscard]] std::expected<BookmarkData, BookmarkError> make(const std::filesystem::path &url);
[[nodiscard]] std::expected<Resolved, BookmarkError> resolve(std::span<const std::byte> bookmark);

// Returns "fennick" in the user's pictures folder, without creating it. Main thread.
[[nodiscard]] std::filesystem::path defaultFolder();

} // namespace FolderBookmark

} // namespace fennick

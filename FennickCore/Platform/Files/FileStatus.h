#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What is known of a file without opening it. Any thread.
namespace fennick {

struct FileStatus {
  FileKind kind = FileKind::other;
  std::int64_t bytes = 0;
  Instant modified;
  std::optional<Instant> born;   // absent on file systems that do not record it
  std::uint32_t permissions = 0; // of owner, group and others: 0644
  FileIdentity identity;

  // When the photo came into being: the earlier of birth and modification. Every atomic rewrite is born
  // anew but keeps or sets its modification time; a copy is born now but keeps the original's.
  [[nodiscard]] Instant created() const { return born ? std::min(*born, modified) : modified; }

  bool operator==(const FileStatus &) const = default;
};

// What is under the name right now, following no link.
[[nodiscard]] IOResult<FileStatus> fileStatus(const std::filesystem::path &file);

struct FolderEntry {
  std::string name;
  FileStatus status;
};

// The entries directly in `folder` for which `wanted` says yes, in the file system's order; only those are
// looked at. One that vanishes meanwhile is left out.
[[nodiscard]] IOResult<std::vector<FolderEntry>>
readFolder(const std::filesystem::path &folder, Links links,
           const std::function<bool(std::string_view name, FileKind kind)> &wanted);

// These follow no link.
[[nodiscard]] IOResult<void> setModificationTime(const std::filesystem::path &file, Instant modified);
[[nodiscard]] IOResult<void> setPermissions(const std::filesystem::path &file, std::uint32_t permissions);
// Gives `file` the permissions and the modification time of `like`, each only if it differs. It is not an
// error when the file system refuses to change them, as network mounts and FAT do: the file then keeps its
// own.
[[nodiscard]] IOResult<void> copyPermissionsAndTime(const FileStatus &like,
                                                    const std::filesystem::path &file);

} // namespace fennick

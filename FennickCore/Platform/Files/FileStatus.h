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

// The metadata of a file. Any thread.
namespace fennick {

struct FileStatus {
  FileKind kind = FileKind::other;
  std::int64_t bytes = 0;
  Instant modified;
  std::optional<Instant> born;   // absent on file systems that do not record it
  std::uint32_t permissions = 0; // of owner, group and others: 0644
  FileIdentity identity;

  // The time when the photo was taken or received: the earlier of birth and modification. An atomic rewrite
  // has a new birth time but keeps or sets the modification time; a copy has a new birth time but keeps the
  // original's modification time.
  [[nodiscard]] Instant created() const { return born ? std::min(*born, modified) : modified; }

  bool operator==(const FileStatus &) const = default;
};

// Returns the status of the file itself; links are not followed.
[[nodiscard]] IOResult<FileStatus> fileStatus(const std::filesystem::path &file);

struct FolderEntry {
  std::string name;
  FileStatus status;
};

// Returns the entries directly in `folder` for which `wanted` returns true, in the file system's order. Only
// their status is read. An entry that vanishes meanwhile is left out.
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

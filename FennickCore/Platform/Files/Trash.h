#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <filesystem>

namespace fennick {

// The places of a file that was moved to the trash.
struct Trashed {
  std::filesystem::path original; // its path before
  std::filesystem::path file;     // where it is; empty when that could not be found out
  std::filesystem::path record;   // what the trash has written down about it; empty where it writes nothing
};

// The desktop's trash, from which users can restore files. Tests use a folder instead. Any thread.
class Trash {
public:
  virtual ~Trash() = default;
  // Moves a file to the trash. On failure it stays where it was (not_supported if the volume has no trash). A
  // link is moved itself.
  [[nodiscard]] virtual IOResult<Trashed> moveToTrash(const std::filesystem::path &file) = 0;
  // Moves a file that this program will not restore to the trash. Cheaper, because it does not look for the
  // name that the file has there: use it for many files.
  [[nodiscard]] virtual IOResult<void> discard(const std::filesystem::path &file) {
    const auto moved = moveToTrash(file);
    return moved ? IOResult<void>() : std::unexpected(moved.error());
  }
};

// The trash of the freedesktop specification: the one in the user's home, or that of the file's volume.
class SystemTrash final : public Trash {
public:
  IOResult<Trashed> moveToTrash(const std::filesystem::path &file) override;
  IOResult<void> discard(const std::filesystem::path &file) override;
};

// Moves a file from the trash back to its old path and creates the folder if it is missing. Returns the path,
// which has a number ("a_2.jpg") if the old name is taken by now. On failure the file stays in the trash;
// no_such_file_or_directory if the trash was emptied. Any thread.
[[nodiscard]] IOResult<std::filesystem::path> restoreFromTrash(const Trashed &trashed, FileSystem &files);

} // namespace fennick

#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <filesystem>

namespace fennick {

// Where a file lies that was moved to the trash.
struct Trashed {
  std::filesystem::path original; // where it was
  std::filesystem::path file;     // where it is; empty when that could not be found out
  std::filesystem::path record;   // what the trash has written down about it; empty where it writes nothing
};

// The desktop's trash, from which people can take things back. Tests put a folder of their own in its place.
// Any thread.
class Trash {
public:
  virtual ~Trash() = default;
  // The file is gone from its folder and lies in the trash, or it is where it was and the error says why
  // (not_supported where the volume has no trash). A link is moved itself.
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

// Takes a file back out of the trash to where it was, making the folder again if need be, and gives its path:
// another name ("a_2.jpg") when somebody else has the old one by now. On failure it lies where it lay;
// no_such_file_or_directory when the trash was emptied. Any thread.
[[nodiscard]] IOResult<std::filesystem::path> restoreFromTrash(const Trashed &trashed, FileSystem &files);

} // namespace fennick

#pragma once

#include "FennickCore/Platform/FileSystem.h"

#include <filesystem>

namespace fennick {

// The desktop's trash, from which people can take things back. Tests put a folder of their own in its place.
// Any thread.
class Trash {
public:
  virtual ~Trash() = default;
  // The file is gone from its folder and lies in the trash, or it is where it was and the error says why
  // (not_supported where the volume has no trash). A link is moved itself.
  [[nodiscard]] virtual IOResult<void> moveToTrash(const std::filesystem::path &file) = 0;
};

// The trash of the freedesktop specification: the one in the user's home, or that of the file's volume.
class SystemTrash final : public Trash {
public:
  IOResult<void> moveToTrash(const std::filesystem::path &file) override;
};

} // namespace fennick

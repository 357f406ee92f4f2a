#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <filesystem>
#include <functional>

// Reading folders with system calls. For the folders of Platform only.
namespace fennick {

// Returns the kind that the `st_mode` of a file states.
[[nodiscard]] FileKind kindFromMode(std::uint32_t mode);
// Opens a folder for reading its entries. Fails with ENOTDIR if it is anything else.
[[nodiscard]] IOResult<FileDescriptor> openDirectory(const std::filesystem::path &folder,
                                                     Links links = Links::follow);
// Calls `visit` for every entry of the folder except "." and "..", with the descriptor of the folder, the
// name and the kind of the entry.
[[nodiscard]] IOResult<void>
visitFolder(const std::filesystem::path &folder, Links links,
            const std::function<void(int folder, const char *name, FileKind kind)> &visit);

} // namespace fennick

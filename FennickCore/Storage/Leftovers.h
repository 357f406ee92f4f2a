#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

// Temporary files beside photos and thumbnails, and what becomes of them when the program is killed. Any
// thread.
namespace fennick {

enum class Temporary : std::uint8_t {
  rotation,  // ".rotate-<UUID>.tmp" beside the photo
  order,     // ".fennick-order.json.<UUID>.tmp" beside the order file
  exported,  // ".export-<UUID>.part" in the folder that is exported to
  thumbnail, // ".<UUID>.tmp" in a folder of thumbnails
};

// A new name for a temporary file in `folder`.
[[nodiscard]] std::filesystem::path temporaryIn(const std::filesystem::path &folder, Temporary kind);
// The name that a photo has while a batch is renamed: "<UUID>-<name>". Of a name near the limit of file names
// only the end fits.
[[nodiscard]] std::string batchName(const std::string &name);

// Announces temporary files or batch names in `folder`: while it exists, no program takes them for leftovers.
// A shared advisory lock on the folder. It waits for nobody, so there is none while somebody locks the folder
// exclusively, which those who clear leftovers do only after they have listed them.
class FolderUse {
public:
  explicit FolderUse(const std::filesystem::path &folder);

private:
  IOResult<DirectoryLock> lock_;
};

// Removes temporary files of rotations, orders and exports that a killed program left in `folder`, and gives
// photos that an interrupted batch left under their batch name their old one, or a free one like it. Does
// nothing while the folder is in use. Only the folder is listed if there are no leftovers.
void clearLeftovers(const std::filesystem::path &folder, FileSystem &files);
// The same for a save folder, the folders in it that photos are looked for in, and its export folder. Asks
// `isStopped` before each folder.
void clearSaveFolder(const std::filesystem::path &saveFolder, FileSystem &files,
                     const std::function<bool()> &isStopped);
// Removes temporary files that a killed program left in a folder of thumbnails, unless it is in use.
void clearThumbnailLeftovers(const std::filesystem::path &folder, FileSystem &files);

} // namespace fennick

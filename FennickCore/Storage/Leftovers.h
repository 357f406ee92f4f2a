#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

// Temporary files beside photos and thumbnails, and their removal after a crash. Any thread.
namespace fennick {

enum class Temporary : std::uint8_t {
  rotation,  // ".rotate-<UUID>.tmp" beside the photo
  order,     // ".fennick-order.json.<UUID>.tmp" beside the order file
  exported,  // ".export-<UUID>.part" in the folder that is exported to
  thumbnail, // ".<UUID>.tmp" in a folder of thumbnails
};

// Returns a new name for a temporary file in `folder`.
[[nodiscard]] std::filesystem::path temporaryIn(const std::filesystem::path &folder, Temporary kind);
// Returns the name that a photo has while a batch is renamed: "<UUID>-<name>". Only the end of a long name is
// kept, within the limit of file names.
[[nodiscard]] std::string batchName(const std::string &name);

// Announces temporary files or batch names in `folder`: while the object exists, no program treats them as
// leftovers. A shared advisory lock on the folder. Does not wait: the lock is missing while another program
// locks the folder exclusively, which programs that clear leftovers do only after listing them.
class FolderUse {
public:
  explicit FolderUse(const std::filesystem::path &folder);

private:
  IOResult<DirectoryLock> lock_;
};

// Removes temporary files of rotations, orders and exports that a killed program left in `folder`, and gives
// photos of an interrupted batch their old name back, or a similar free one. Does nothing while the folder is
// in use. If there are no leftovers the folder is only listed.
void clearLeftovers(const std::filesystem::path &folder, FileSystem &files);
// Clears a save folder, the folders in it that may contain photos, and its export folder. Calls `isStopped`
// before each folder.
void clearSaveFolder(const std::filesystem::path &saveFolder, FileSystem &files,
                     const std::function<bool()> &isStopped);
// Removes temporary files that a killed program left in a folder of thumbnails, unless the folder is in use.
void clearThumbnailLeftovers(const std::filesystem::path &folder, FileSystem &files);

} // namespace fennick

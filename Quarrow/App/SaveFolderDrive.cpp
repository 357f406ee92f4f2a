#include "Quarrow/App/SaveFolderDrive.h"

#include "FennickCore/Platform/Files/FileSystem.h"

#include <algorithm>

namespace quarrow {

namespace fs = std::filesystem;

fs::path driveOf(const fs::path &folder) {
  fs::path drive = folder;
  auto identity = fennick::fileIdentity(drive);
  for (; !identity && drive.has_relative_path(); identity = fennick::fileIdentity(drive))
    drive = drive.parent_path();
  while (drive.has_relative_path()) {
    const auto above = fennick::fileIdentity(drive.parent_path());
    if (!above || !identity || above->device != identity->device)
      break;
    drive = drive.parent_path();
  }
  return drive;
}

bool isUnplugged(const fs::path &folder, const fs::path &drive) {
  const fs::path now = driveOf(folder);
  return now != drive && std::ranges::mismatch(now, drive).in1 == now.end();
}

} // namespace quarrow

#include "Quarrow/App/GalleryFolder.h"

#include <system_error>

namespace quarrow {

std::filesystem::path galleryURL(const std::optional<std::string> &chosen,
                                 const fennick::SaveDestination &destination, fennick::Instant now) {
  if (chosen && !chosen->empty() && !chosen->contains("..")) {
    // Appended as text: a name that begins with "/" must not replace the save folder.
    const auto folder = std::filesystem::path(destination.folder.string() + "/" + *chosen).lexically_normal();
    std::error_code ignored;
    if (std::filesystem::is_directory(folder, ignored))
      return folder.has_filename() ? folder : folder.parent_path();
  }
  return destination.directory(now);
}

} // namespace quarrow

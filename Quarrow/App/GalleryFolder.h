#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/SaveDestination.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quarrow {

// Returns the folder that phones may browse: `chosen`, a name below the save folder, if that folder exists;
// otherwise the one for uploads at this moment. Names that contain ".." are ignored. Any thread.
[[nodiscard]] std::filesystem::path galleryURL(const std::optional<std::string> &chosen,
                                               const fennick::SaveDestination &destination,
                                               fennick::Instant now);

} // namespace quarrow

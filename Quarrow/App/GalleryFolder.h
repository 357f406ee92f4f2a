#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/SaveDestination.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quarrow {

// The folder that phones may browse: `chosen`, a name below the save folder, if there is such a folder; else
// the one that uploads of this moment go to. Nothing that contains ".." leads anywhere. Any thread.
[[nodiscard]] std::filesystem::path galleryURL(const std::optional<std::string> &chosen,
                                               const fennick::SaveDestination &destination,
                                               fennick::Instant now);

} // namespace quarrow

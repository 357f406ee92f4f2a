#pragma once

#include "FennickCore/Imaging/Picture/HeifFile.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Finds and cleans MP4 and QuickTime videos inside picture files, as in motion photos, by their boxes. Pure
// functions; any thread.
namespace fennick::picture {

// Returns the first complete video in `file` from `from` on: from its "ftyp" box to the end of its last box.
[[nodiscard]] std::optional<HeifStretch> findVideo(std::string_view file, std::size_t from);

// Returns whether descriptions in the video may contain a position or the name of a place, or a track may do
// so because it is neither video nor audio nor the timing of a motion photo.
[[nodiscard]] bool videoMayHaveLocation(std::string_view video);

// Returns the video with every description (user data, metadata, extensions) replaced by free space of the
// same size, so that nothing moves, or nullopt if a location may remain.
[[nodiscard]] std::optional<std::string> videoWithoutLocation(std::string_view video);

} // namespace fennick::picture

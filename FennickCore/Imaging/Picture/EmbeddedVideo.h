#pragma once

#include "FennickCore/Imaging/Picture/HeifFile.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// MP4 and QuickTime videos inside of picture files, as motion photos have them, as far as their boxes go.
// Pure functions; any thread.
namespace fennick::picture {

// The first whole video in `file` from `from` on: from its "ftyp" box to the end of its last box.
[[nodiscard]] std::optional<HeifStretch> findVideo(std::string_view file, std::size_t from);

// Whether descriptions in the video give a position or name a place, or whether it has a track that may do
// so: one that is neither video nor sound nor the timing of a motion photo.
[[nodiscard]] bool videoMayHaveLocation(std::string_view video);

// The video with every description (user data, metadata, extensions) made free space of the same size, so
// that nothing moves. Returns nullopt if a location may remain.
[[nodiscard]] std::optional<std::string> videoWithoutLocation(std::string_view video);

} // namespace fennick::picture

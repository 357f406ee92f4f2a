#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Storage/PhotoFileOps.h"

#include <filesystem>

namespace fennick::PhotoFileOps {

enum class QuarterTurn { clockwise, anticlockwise };

// Rotates the picture by changing only its orientation. The file is replaced atomically, keeps its
// permissions and becomes one second newer, so that it keeps its place among others while caches that compare
// times read it again. Any thread.
[[nodiscard]] Result<void> rotate(const std::filesystem::path &file, QuarterTurn turn,
                                  PictureDecoder &decoder, FileSystem &files);

} // namespace fennick::PhotoFileOps

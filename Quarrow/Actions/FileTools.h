#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Trash.h"

namespace quarrow {

// What the actions use on their queue to change photos. All outlive the actions.
struct FileTools {
  fennick::FileSystem &files;
  fennick::PictureDecoder &decoder;
  fennick::Trash &trash;
};

} // namespace quarrow

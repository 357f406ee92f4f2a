#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Trash.h"

namespace quarrow {

// What changes photos on the queue of the actions. All outlive the actions.
struct FileTools {
  fennick::FileSystem &files;
  fennick::PictureDecoder &decoder;
  fennick::Trash &trash;
};

} // namespace quarrow

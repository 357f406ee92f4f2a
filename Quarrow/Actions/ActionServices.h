#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "Quarrow/App/Desktop.h"

namespace quarrow {

// What the photo actions need besides the coordinator; all outlive them.
struct ActionServices {
  fennick::MainQueue &mainQueue;
  fennick::FileSystem &files;
  fennick::PictureDecoder &decoder;
  fennick::Trash &trash;
  Desktop &desktop;
};

} // namespace quarrow

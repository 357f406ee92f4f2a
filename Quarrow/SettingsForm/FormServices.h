#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "Quarrow/App/Desktop.h"

#include <filesystem>

namespace quarrow {

// What the settings form needs besides the coordinator; all outlive it.
struct FormServices {
  fennick::MainQueue &mainQueue;
  fennick::FileSystem &files;
  const fennick::Clock &clock;
  fennick::PictureDecoder &decoder;
  Desktop &desktop;
  std::filesystem::path sampleFolder; // for the sample picture that actions are tried with; made when needed
};

} // namespace quarrow

#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <filesystem>
#include <string_view>

namespace fennick {

// A file that only grows: every text is written at its end in one system call, so that a program that is
// killed leaves all earlier texts complete. What was appended survives the end of the program, but not
// necessarily a power cut. One thread at a time.
class AppendedFile {
public:
  // Opens the file, which is created with mode 0600 if it does not exist. A link is not followed.
  [[nodiscard]] static IOResult<AppendedFile> open(const std::filesystem::path &file);
  // Appends `text`. After a failure part of it may be in the file.
  [[nodiscard]] IOResult<void> append(std::string_view text);

private:
  explicit AppendedFile(FileDescriptor fd) : fd_(std::move(fd)) {}
  FileDescriptor fd_;
};

} // namespace fennick

#include "FennickCore/Platform/System/FileDescriptor.h"

#include <unistd.h>

#include <utility>

namespace fennick {

FileDescriptor::FileDescriptor(FileDescriptor &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

FileDescriptor &FileDescriptor::operator=(FileDescriptor &&other) noexcept {
  if (this != &other) {
    reset();
    fd_ = std::exchange(other.fd_, -1);
  }
  return *this;
}

FileDescriptor::~FileDescriptor() { reset(); }

int FileDescriptor::release() { return std::exchange(fd_, -1); }

void FileDescriptor::reset() {
  if (isOpen())
    ::close(release());
}

} // namespace fennick

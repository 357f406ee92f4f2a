#include "FennickCore/Platform/Files/FileAttributes.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <sys/xattr.h>

#include <tuple>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kUserPrefix = "user.";

// Calls `read` with a buffer of sufficient size and returns what it wrote.
template <typename Read>
IOResult<std::string> readText(Read read) {
  std::string text(kMostAttributeBytes, '\0');
  const ssize_t bytes = read(text.data(), text.size());
  if (bytes < 0)
    return lastFailure();
  text.resize(static_cast<std::size_t>(bytes));
  return text;
}

} // namespace

IOResult<std::string> fileAttribute(const fs::path &file, const char *name) {
  return readText([&](char *into, std::size_t room) { return ::lgetxattr(file.c_str(), name, into, room); });
}

IOResult<void> setFileAttribute(const fs::path &file, const char *name, std::string_view value) {
  return checked(::lsetxattr(file.c_str(), name, value.data(), value.size(), 0));
}

void copyUserAttributes(const fs::path &from, const fs::path &to) {
  const auto names =
      readText([&](char *into, std::size_t room) { return ::llistxattr(from.c_str(), into, room); });
  if (!names)
    return;
  for (std::size_t at = 0; at < names->size();) { // each ends with a NUL
    const char *name = names->c_str() + at;
    at += std::string_view(name).size() + 1;
    if (!std::string_view(name).starts_with(kUserPrefix))
      continue;
    if (const auto value = fileAttribute(from, name))
      std::ignore = setFileAttribute(to, name, *value);
  }
}

} // namespace fennick

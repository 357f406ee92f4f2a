#include "FennickCore/Platform/Files/AsideFile.h"

#include <tuple>

namespace fennick {

namespace {

IOResult<void> fill(WritableFile &file, std::string_view content, Durability durability) {
  if (auto written = file.write(std::as_bytes(std::span(content))); !written)
    return written;
  if (durability == Durability::asTheSystemLikes)
    return {};
  return file.sync();
}

} // namespace

IOResult<void> writeAside(FileSystem &files, const std::filesystem::path &file, std::string_view content,
                          Durability durability) {
  auto created = files.createFile(file);
  if (!created)
    return std::unexpected(created.error());
  auto result = fill(**created, content, durability);
  if (auto closed = (*created)->close(); result)
    result = closed;
  if (!result)
    std::ignore = files.remove(file);
  return result;
}

} // namespace fennick

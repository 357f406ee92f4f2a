#include "FennickCore/Platform/Files/FileCopy.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <tuple>
#include <vector>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = 256UZ * 1024;

IOResult<void> copyContents(ReadableFile &from, WritableFile &into) {
  std::vector<std::byte> piece(kPiece);
  for (;;) {
    const auto read = from.read(piece);
    if (!read)
      return std::unexpected(read.error());
    if (*read == 0)
      return into.sync();
    if (auto written = into.write(std::span(piece).first(*read)); !written)
      return written;
  }
}

// Reads the next bytes: a full piece unless the file ends. Returns an empty span if it cannot be read.
std::span<const std::byte> nextPiece(ReadableFile &file, std::span<std::byte> piece) {
  std::size_t filled = 0;
  while (filled < piece.size()) {
    const auto read = file.read(piece.subspan(filled));
    if (!read)
      return {};
    if (*read == 0)
      break;
    filled += *read;
  }
  return piece.first(filled);
}

} // namespace

IOResult<void> copyFile(FileSystem &files, const fs::path &from, const fs::path &to) {
  auto source = ReadableFile::open(from);
  if (!source)
    return std::unexpected(source.error());
  auto created = files.createFile(to);
  if (!created)
    return std::unexpected(created.error());
  auto copied = copyContents(*source, **created);
  if (auto closed = (*created)->close(); copied)
    copied = closed;
  if (!copied)
    std::ignore = files.remove(to);
  return copied;
}

bool haveSameContent(const fs::path &one, const fs::path &other) {
  auto left = ReadableFile::open(one);
  auto right = ReadableFile::open(other);
  if (!left || !right || !left->size() || left->size() != right->size())
    return false;
  std::vector<std::byte> leftPiece(kPiece);
  std::vector<std::byte> rightPiece(kPiece);
  for (std::int64_t remaining = *left->size(); remaining > 0;) {
    const auto bytes = nextPiece(*left, leftPiece);
    if (bytes.empty() || !std::ranges::equal(bytes, nextPiece(*right, rightPiece)))
      return false;
    remaining -= static_cast<std::int64_t>(bytes.size());
  }
  return true;
}

} // namespace fennick

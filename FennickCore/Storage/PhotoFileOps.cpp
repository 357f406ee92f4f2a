#include "FennickCore/Storage/PhotoFileOps.h"

#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <glib.h>

#include <tuple>

namespace fennick::PhotoFileOps {

namespace fs = std::filesystem;

namespace {

// White space of all scripts: the space of Chinese text has three bytes.
bool isWhiteSpace(gunichar character) {
  constexpr gunichar kVerticalTab = 0x0B;
  constexpr gunichar kNextLine = 0x85;
  return character == kVerticalTab || character == kNextLine || g_unichar_isspace(character) != FALSE;
}

std::string_view withoutSpaceAround(std::string_view text) {
  if (!isValidUTF8(text))
    return trimmed(text);
  const char *begin = text.data();
  const char *end = text.data() + text.size();
  while (begin < end && isWhiteSpace(g_utf8_get_char(begin)))
    begin = g_utf8_next_char(begin);
  while (end > begin) {
    const char *last = g_utf8_prev_char(end);
    if (!isWhiteSpace(g_utf8_get_char(last)))
      break;
    end = last;
  }
  return {begin, end};
}

// Other restrictions, such as the length, are left to the file system.
bool isValidName(std::string_view name) {
  using namespace std::string_view_literals;
  return !name.empty() && !name.starts_with('.') && name.find_first_of("/:\0"sv) == std::string_view::npos;
}

std::string shortName(const fs::path &file) { return displayText(file.filename().string()); }

std::string partlyRenamedText(const OpError &error) {
  std::string text = fmt::format("重命名中断（{}），以下文件未能恢复原名", error.cause.message());
  for (const auto &[from, to] : error.left)
    text += fmt::format("\n{} → {}", shortName(from), shortName(to));
  return text;
}

} // namespace

std::string OpError::description() const {
  switch (kind) {
  case Kind::nameTaken:
    return "已存在同名文件：" + displayText(name);
  case Kind::notAnImage:
    return "不是图片文件";
  case Kind::writeFailed:
    return "写入失败";
  case Kind::invalidName:
    return "文件名不合法";
  case Kind::system:
    return cause.message();
  case Kind::partlyRenamed:
    return partlyRenamedText(*this);
  }
  return {};
}

Result<fs::path> rename(const fs::path &file, std::string_view newName, FileSystem &files) {
  const std::string_view base = withoutSpaceAround(newName);
  if (!isValidName(base))
    return std::unexpected(OpError{.kind = OpError::Kind::invalidName});
  const std::string name = std::string(base) + file.extension().string();
  fs::path target = file.parent_path() / name;
  if (target == file)
    return file;
  if (const auto moved = files.moveNoReplace(file, target); !moved) {
    if (moved.error() == std::errc::file_exists)
      return std::unexpected(OpError{.kind = OpError::Kind::nameTaken, .name = name});
    return std::unexpected(OpError{.kind = OpError::Kind::system, .cause = moved.error()});
  }
  // The rename has succeeded even if this fails; a power cut may then bring back the old name.
  std::ignore = files.syncDirectory(file.parent_path());
  return target;
}

} // namespace fennick::PhotoFileOps

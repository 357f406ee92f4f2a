#include "Quarrow/App/ReceivedNote.h"

#include "FennickCore/Platform/Text.h"

#include <fmt/format.h>

namespace quarrow {

std::string receivedNote(const fennick::UploadRecord &record, const fennick::ProcessResult &result) {
  const std::string name = result.finalURL.filename().string();
  const std::string size = fennick::fileSizeText(record.bytes);
  if (result.note && result.processed)
    return fmt::format("{}：{} → {}", name, size, *result.note);
  if (result.note && result.note->starts_with("未处理"))
    return fmt::format("{}：{}", name, *result.note);
  return fmt::format("{}：{}", name, size);
}

fennick::PhotoOrigin originOf(const fennick::UploadRecord &record, const fennick::ProcessResult &result) {
  std::string note = result.note.value_or("");
  if (result.processed)
    note = fmt::format("{} → {}", fennick::fileSizeText(record.bytes), note);
  return {.address = record.remoteAddress,
          .name = record.filename.value_or(""),
          .receivedAt = record.receivedAt,
          .note = std::move(note),
          .original = result.originalURL ? result.originalURL->filename().string() : ""};
}

} // namespace quarrow

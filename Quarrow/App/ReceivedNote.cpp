#include "Quarrow/App/ReceivedNote.h"

#include "FennickCore/Support/Text.h"

#include <fmt/format.h>

namespace quarrow {

namespace {

std::string withRemark(std::string note, const fennick::PrivateData &left) {
  if (!left.any())
    return note;
  return fmt::format("{}{}{}", note, note.empty() ? "" : " · ",
                     left.location ? "位置信息仍在文件中 / location still in the file"
                                   : "元数据仍在文件中 / metadata still in the file");
}

} // namespace

std::string receivedNote(const fennick::UploadRecord &record, const fennick::ProcessResult &result,
                         const fennick::PrivateData &left) {
  const std::string name = result.finalURL.filename().string();
  const std::string size = fennick::fileSizeText(record.bytes);
  if (result.note && result.processed)
    return withRemark(fmt::format("{}：{} → {}", name, size, *result.note), left);
  if (result.note && (left.any() || result.note->starts_with("未处理")))
    return withRemark(fmt::format("{}：{}", name, *result.note), left);
  return withRemark(fmt::format("{}：{}", name, size), left);
}

fennick::PhotoOrigin originOf(const fennick::UploadRecord &record, const fennick::ProcessResult &result,
                              const fennick::PrivateData &left) {
  std::string note = result.note.value_or("");
  if (result.processed)
    note = fmt::format("{} → {}", fennick::fileSizeText(record.bytes), note);
  return {.address = record.remoteAddress,
          .name = record.filename.value_or(""),
          .receivedAt = record.receivedAt,
          .note = withRemark(std::move(note), left),
          .original = result.originalURL ? result.originalURL->filename().string() : ""};
}

} // namespace quarrow

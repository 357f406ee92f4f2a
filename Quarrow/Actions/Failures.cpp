#include "Quarrow/Actions/Failures.h"

#include "FennickCore/Support/Text.h"

namespace quarrow {

QString nameText(const std::filesystem::path &file) {
  return QString::fromStdString(fennick::displayText(file.filename().native()));
}

QString reasonText(const std::error_code &reason) {
  const auto tr = [](const char *text) { return QCoreApplication::translate("quarrow::Failures", text); };
  if (reason == std::errc::no_such_file_or_directory)
    return tr("文件不见了");
  if (reason == std::errc::permission_denied || reason == std::errc::operation_not_permitted)
    return tr("没有权限");
  if (reason == std::errc::no_space_on_device)
    return tr("磁盘空间不够");
  if (reason == std::errc::read_only_file_system)
    return tr("磁盘是只读的");
  if (reason == std::errc::filename_too_long)
    return tr("文件名太长");
  return QString::fromStdString(reason.message());
}

QString problemText(const fennick::PhotoFileOps::OpError &error) {
  return error.kind == fennick::PhotoFileOps::OpError::Kind::system
             ? reasonText(error.cause)
             : QString::fromStdString(error.description());
}

void Failures::add(const std::filesystem::path &file, const std::string &reason) {
  lines_.append(tr("%1：%2").arg(nameText(file), QString::fromStdString(reason)));
}

void Failures::add(const std::filesystem::path &file, const std::error_code &reason) {
  add(file, reasonText(reason).toStdString());
}

} // namespace quarrow

#include "Quarrow/Desktop/ShowFile.h"

#include "FennickCore/Platform/System/Log.h"
#include "Quarrow/App/Applications.h"
#include "Quarrow/Desktop/DBusCall.h"

#include <QFile>
#include <QStringList>
#include <QUrl>

#include <expected>
#include <string>

namespace quarrow {

namespace {

void logFailure(const std::expected<void, std::string> &result) {
  if (!result)
    fennick::log("cannot show a file: " + result.error());
}

} // namespace

void openFile(const std::filesystem::path &file) { logFailure(applications::openFile(file)); }

void showInFolder(const std::vector<std::filesystem::path> &files, const QDBusConnection &bus,
                  QObject &context) {
  if (files.empty())
    return;
  auto call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  QStringList addresses;
  for (const auto &file : files)
    addresses.append(QUrl::fromLocalFile(QFile::decodeName(file.c_str())).toString(QUrl::FullyEncoded));
  call << addresses << QString();
  callAsync(bus, call, context, [folder = files.front().parent_path()](const QDBusMessage &reply) {
    if (reply.type() == QDBusMessage::ErrorMessage)
      logFailure(applications::openFolder(folder));
  });
}

} // namespace quarrow

#include "Quarrow/Desktop/ShowFile.h"

#include "FennickCore/Platform/Applications.h"
#include "FennickCore/Platform/Log.h"
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

void openFile(const std::filesystem::path &file) { logFailure(fennick::openFile(file)); }

void showInFolder(const std::filesystem::path &file, const QDBusConnection &bus, QObject &context) {
  auto call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  const QUrl url = QUrl::fromLocalFile(QFile::decodeName(file.c_str()));
  call << QStringList(url.toString(QUrl::FullyEncoded)) << QString();
  callAsync(bus, call, context, [file](const QDBusMessage &reply) {
    if (reply.type() == QDBusMessage::ErrorMessage)
      logFailure(fennick::openFolder(file.parent_path()));
  });
}

} // namespace quarrow

#pragma once

#include <QDBusConnection>

#include <filesystem>
#include <vector>

class QObject;

// Received files in the desktop's other programs. Both return at once; what cannot be done goes to the log.
// Main thread.
namespace quarrow {

// In the program that people use for files of its kind.
void openFile(const std::filesystem::path &file);

// Selected in the file manager; where that cannot be asked for, the first one's folder. `context` lives until
// the file manager has answered, or nothing more happens.
void showInFolder(const std::vector<std::filesystem::path> &files, const QDBusConnection &bus,
                  QObject &context);

} // namespace quarrow

#pragma once

#include <QDBusConnection>

#include <filesystem>
#include <vector>

class QObject;

// Opens received files in other programs. Both functions return at once; failures are logged. Main thread.
namespace quarrow {

// Opens the file in the default program for its kind.
void openFile(const std::filesystem::path &file);

// Selects the files in the file manager, or opens the first one's folder if that is not supported. `context`
// has to exist until the file manager has answered; otherwise nothing more happens.
void showInFolder(const std::vector<std::filesystem::path> &files, const QDBusConnection &bus,
                  QObject &context);

} // namespace quarrow

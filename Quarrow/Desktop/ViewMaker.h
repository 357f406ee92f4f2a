#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace quarrow {

// Makes the view of this name ("Panel", "MainWindow"), which is not shown yet; nothing when that fails, which
// has gone to the log then. Main thread.
using ViewMaker = std::function<std::unique_ptr<QObject>(const QString &name)>;

} // namespace quarrow

#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace quarrow {

// Creates the view of this name ("Panel", "MainWindow") without showing it. Returns null on failure, which is
// logged. Main thread.
using ViewMaker = std::function<std::unique_ptr<QObject>(const QString &name)>;

} // namespace quarrow

#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace quarrow {

// Makes the view of this name ("Panel", "MainWindow"), which is not shown yet. Returns null if that fails;
// the log then says why. Main thread.
using ViewMaker = std::function<std::unique_ptr<QObject>(const QString &name)>;

} // namespace quarrow

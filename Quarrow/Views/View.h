#pragma once

#include <QObject>
#include <QString>

#include <expected>
#include <memory>

class QQmlEngine;

namespace quarrow {

// Lets the engine find the module and its pictures. Done again it does nothing.
void prepareEngine(QQmlEngine &engine);

// Makes one of the module's views, "Panel" (an item) or a window that is not shown yet; on failure the error
// is Qt's own, for the log. The engine outlives it. The singletons in Registration.h are set before the first
// call, and the program imports the module's plugin: Q_IMPORT_QML_PLUGIN(TevrinPlugin). Main thread.
[[nodiscard]] std::expected<std::unique_ptr<QObject>, QString> makeView(QQmlEngine &engine,
                                                                        const QString &name);

} // namespace quarrow

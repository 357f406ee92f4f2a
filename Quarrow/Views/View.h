#pragma once

#include <QObject>
#include <QString>

#include <expected>
#include <memory>

class QQmlEngine;

namespace quarrow {

// Lets the engine find the module and its pictures. Has an effect only once.
void prepareEngine(QQmlEngine &engine);

// Creates one of the module's views: "Panel" (an item) or a window that is not shown yet. The error is Qt's
// message, for the log. The engine outlives the view. Set the singletons in Registration.h before the first
// call, and import the module's plugin in the program: Q_IMPORT_QML_PLUGIN(TevrinPlugin). Main thread.
[[nodiscard]] std::expected<std::unique_ptr<QObject>, QString> makeView(QQmlEngine &engine,
                                                                        const QString &name);

} // namespace quarrow

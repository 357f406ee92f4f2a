#pragma once

#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/UploadProgress.h"
#include "Quarrow/Desktop/Shell.h"

#include <QJSEngine>
#include <QQmlEngine>

// The objects that QML knows by name. `main` owns them and sets each `instance` before it makes an engine;
// they outlive every engine. Main thread.
namespace quarrow {

template <typename T>
T *lentToQml(T *instance) {
  QJSEngine::setObjectOwnership(instance, QJSEngine::CppOwnership);
  return instance;
}

struct ServerSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::ServerModel)
  QML_NAMED_ELEMENT(Server)
  QML_SINGLETON

public:
  static inline ServerModel *instance = nullptr;
  static ServerModel *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
};

struct ProgressSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::UploadProgress)
  QML_NAMED_ELEMENT(Progress)
  QML_SINGLETON

public:
  static inline UploadProgress *instance = nullptr;
  static UploadProgress *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
};

struct ShellSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::Shell)
  QML_NAMED_ELEMENT(Shell)
  QML_SINGLETON

public:
  static inline Shell *instance = nullptr;
  static Shell *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
};

// How the self-check's answer is handed over.
struct LocalNetworkStatusValue {
  Q_GADGET
  QML_FOREIGN(quarrow::LocalNetworkStatus)
  QML_VALUE_TYPE(localNetworkStatus)
};

} // namespace quarrow

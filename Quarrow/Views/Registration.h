#pragma once

#include "Quarrow/Actions/PhotoActions.h"
#include "Quarrow/App/InputLimits.h"
#include "Quarrow/App/PhotoImport.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/UploadProgress.h"
#include "Quarrow/Desktop/Shell.h"
#include "Quarrow/Look/QuickLook.h"
#include "Quarrow/SettingsForm/SettingsForm.h"
#include "Quarrow/Wall/PhotoWall.h"

#include <QJSEngine>
#include <QQmlEngine>

// The objects that QML accesses by name. `main` owns them and sets each `instance` before it creates an
// engine; they outlive every engine. Main thread.
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

struct ImportsSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::PhotoImport)
  QML_NAMED_ELEMENT(Imports)
  QML_SINGLETON

public:
  static inline PhotoImport *instance = nullptr;
  static PhotoImport *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
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

struct WallSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::PhotoWall)
  QML_NAMED_ELEMENT(Wall)
  QML_SINGLETON

public:
  static inline PhotoWall *instance = nullptr;
  static PhotoWall *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
};

struct LookSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::QuickLook)
  QML_NAMED_ELEMENT(Look)
  QML_SINGLETON

public:
  static inline QuickLook *instance = nullptr;
  static QuickLook *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
};

struct ActionsSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::PhotoActions)
  QML_NAMED_ELEMENT(Actions)
  QML_SINGLETON

public:
  static inline PhotoActions *instance = nullptr;
  static PhotoActions *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
};

namespace LimitsType {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(quarrow::InputLimits)
QML_NAMED_ELEMENT(Limits)
} // namespace LimitsType

struct FileJobsType {
  Q_GADGET
  QML_FOREIGN(quarrow::FileJobs)
  QML_NAMED_ELEMENT(FileJobs)
  QML_UNCREATABLE("belongs to Actions")
};

struct RenamePreviewType {
  Q_GADGET
  QML_FOREIGN(quarrow::RenamePreview)
  QML_NAMED_ELEMENT(RenamePreview)
  QML_UNCREATABLE("belongs to Actions")
};

struct RenameFormType {
  Q_GADGET
  QML_FOREIGN(quarrow::RenameForm)
  QML_NAMED_ELEMENT(RenameForm)
  QML_UNCREATABLE("belongs to Actions")
};

struct ExportFormType {
  Q_GADGET
  QML_FOREIGN(quarrow::ExportForm)
  QML_NAMED_ELEMENT(ExportForm)
  QML_UNCREATABLE("belongs to Actions")
};

struct SettingsSingleton {
  Q_GADGET
  QML_FOREIGN(quarrow::SettingsForm)
  QML_NAMED_ELEMENT(Settings)
  QML_SINGLETON

public:
  static inline SettingsForm *instance = nullptr;
  static SettingsForm *create(QQmlEngine *, QJSEngine *) { return lentToQml(instance); }
};

// The parts of the settings, and the list of applications.
struct ImagingFormType {
  Q_GADGET
  QML_FOREIGN(quarrow::ImagingForm)
  QML_NAMED_ELEMENT(ImagingForm)
  QML_UNCREATABLE("Settings has one")
};

struct WorkflowFormType {
  Q_GADGET
  QML_FOREIGN(quarrow::WorkflowForm)
  QML_NAMED_ELEMENT(WorkflowForm)
  QML_UNCREATABLE("Settings has one")
};

struct ApplicationListType {
  Q_GADGET
  QML_FOREIGN(quarrow::ApplicationList)
  QML_ANONYMOUS
};

// The result of the self-check as a value type.
struct LocalNetworkStatusValue {
  Q_GADGET
  QML_FOREIGN(quarrow::LocalNetworkStatus)
  QML_VALUE_TYPE(localNetworkStatus)
};

} // namespace quarrow

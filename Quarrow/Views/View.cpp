#include "Quarrow/Views/View.h"

#include "Quarrow/Views/Registration.h"
#include "Quarrow/Views/TileImages.h"

#include <QQmlComponent>
#include <QQmlEngine>

namespace quarrow {

void prepareEngine(QQmlEngine &engine) {
  const QString modules = ":/qt/qml";
  if (!engine.importPathList().contains(modules))
    engine.addImportPath(modules);
  if (engine.imageProvider(WallThumbnails::kProvider) == nullptr)
    engine.addImageProvider(WallThumbnails::kProvider,
                            std::make_unique<TileImages>(WallSingleton::instance->thumbnails()).release());
}

std::expected<std::unique_ptr<QObject>, QString> makeView(QQmlEngine &engine, const QString &name) {
  prepareEngine(engine);
  QQmlComponent component(&engine);
  // Uses an import, which registers the types in C++, unlike loading the file directly.
  component.setData("import Tevrin\n" + name.toUtf8() + " {}", QUrl());
  std::unique_ptr<QObject> view(component.create());
  if (!view)
    return std::unexpected(component.errorString());
  return view;
}

} // namespace quarrow

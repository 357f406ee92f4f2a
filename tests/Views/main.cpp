#include "Quarrow/Views/View.h"
#include "tests/Views/Hands.h"
#include "tools/Stage/Stage.h"

#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>
#include <QtQuickTest>

#include <memory>

Q_IMPORT_QML_PLUGIN(TevrinPlugin)

// Provides the stage and the input to the suites.
class Setup : public QObject {
  Q_OBJECT

public slots:
  void applicationAvailable() {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    qmlRegisterSingletonType<quarrow::test::Stage>("TevrinTest", 1, 0, "Stage", [this](auto *, auto *) {
      QJSEngine::setObjectOwnership(stage_.get(), QJSEngine::CppOwnership);
      return stage_.get();
    });
    qmlRegisterSingletonInstance("TevrinTest", 1, 0, "Hands", &hands_);
  }
  // Each file has an engine and a stage of its own.
  void qmlEngineAvailable(QQmlEngine *engine) {
    stage_.reset();
    stage_ = std::make_unique<quarrow::test::Stage>();
    quarrow::prepareEngine(*engine);
  }
  void cleanupTestCase() { stage_.reset(); }

private:
  std::unique_ptr<quarrow::test::Stage> stage_;
  quarrow::test::Hands hands_;
};

QUICK_TEST_MAIN_WITH_SETUP(ViewsTests, Setup)

#include "main.moc"

#include "Quarrow/Desktop/WindowedApplication.h"

#include "Quarrow/Desktop/Catalogue.h"

#include <QEvent>
#include <QFont>
#include <QFontInfo>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>

namespace quarrow {

namespace {

// Returns the name of the OpenGL renderer; empty without one.
QByteArray openGLRenderer() {
  QOpenGLContext context;
  QOffscreenSurface surface;
  surface.create();
  if (!context.create() || !context.makeCurrent(&surface))
    return {};
  const auto *name = context.functions()->glGetString(GL_RENDERER);
  return name != nullptr ? QByteArray(static_cast<const char *>(static_cast<const void *>(name)))
                         : QByteArray();
}

} // namespace

WindowedApplication::WindowedApplication(int &argc, char **argv) : QApplication(argc, argv) {
  setApplicationName("tevrin");
  setApplicationDisplayName("Tevrin");
  setDesktopFileName("tevrin");
  setWindowIcon(QIcon(":/tray/tevrin.svg"));
  setQuitOnLastWindowClosed(false);
  // In sessions in other languages Chinese characters would come from the first font that has them, in other
  // shapes.
  QFont::insertSubstitutions(font().family(), {QFontInfo(font()).family(), "Noto Sans CJK SC"});
  catalogue_ = catalogueFor(QLocale().uiLanguages());
  if (catalogue_)
    installTranslator(catalogue_.get());
  // Texts of Qt's own dialogs in the same language.
  if (qtTexts_.load("qtbase_" + (catalogue_ ? catalogue_->language() : "zh_CN"),
                    QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    installTranslator(&qtTexts_);
}

bool WindowedApplication::event(QEvent *event) {
  if (event->type() == QEvent::Quit) {
    exit();
    return true;
  }
  const bool handled = QApplication::event(event);
  if (event->type() == QEvent::ApplicationPaletteChange)
    emit coloursChanged();
  return handled;
}

void adoptActivationToken(const QString &token) {
  if (!token.isEmpty())
    qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

void chooseRenderer() {
  if (qEnvironmentVariableIsSet("QT_QUICK_BACKEND") || qEnvironmentVariableIsSet("QSG_RHI_BACKEND"))
    return;
  const QByteArray renderer = openGLRenderer();
  if (renderer.isEmpty() || renderer.contains("llvmpipe") || renderer.contains("softpipe"))
    QQuickWindow::setSceneGraphBackend("software");
}

} // namespace quarrow

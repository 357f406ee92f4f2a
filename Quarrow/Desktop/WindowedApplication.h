#pragma once

#include <QApplication>
#include <QString>
#include <QTranslator>

#include <memory>

namespace quarrow {

// The application object of the program with windows. It lives without any window, and quitting it asks no
// window for leave. Texts are in the session's language, where they have been translated into it.
class WindowedApplication final : public QApplication {
  Q_OBJECT

public:
  // Both as `main` was given them; they outlive the object.
  WindowedApplication(int &argc, char **argv);

signals:
  void coloursChanged();

protected:
  bool event(QEvent *event) override;

private:
  std::unique_ptr<QTranslator> catalogue_;
  QTranslator qtTexts_;
};

// A launcher's or a shortcut's activation token, if not empty: the user wants the next window that is shown,
// and the desktop gives it focus.
void adoptActivationToken(const QString &token);

// Draws the windows without OpenGL where there is none, or only one that is software itself and slower.
// Before the first window is made; what the environment says about it (QT_QUICK_BACKEND) comes first.
void chooseRenderer();

} // namespace quarrow

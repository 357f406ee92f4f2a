#pragma once

#include <QApplication>
#include <QString>
#include <QTranslator>

#include <memory>

namespace quarrow {

// The application object of the program with windows. It runs without windows, and quitting does not ask
// them. Texts are in the session's language if there is a translation.
class WindowedApplication final : public QApplication {
  Q_OBJECT

public:
  // The arguments of `main`, which outlive the object.
  WindowedApplication(int &argc, char **argv);

signals:
  void coloursChanged();

protected:
  bool event(QEvent *event) override;

private:
  std::unique_ptr<QTranslator> catalogue_;
  QTranslator qtTexts_;
};

// Uses the activation token of a launcher or shortcut, if not empty: the desktop then gives focus to the next
// window that is shown.
void adoptActivationToken(const QString &token);

// Draws windows in software if OpenGL is missing or itself software, which is slower. Call it before the
// first window is created; the environment (QT_QUICK_BACKEND) takes precedence.
void chooseRenderer();

} // namespace quarrow

#include "Quarrow/Desktop/WindowSelfTest.h"

#include <QEventLoop>
#include <QImage>
#include <QQuickWindow>
#include <QTimer>

#include <fmt/format.h>

#include <chrono>
#include <functional>

namespace quarrow {

namespace {

constexpr std::chrono::seconds kPatience{20};

// Collects warnings about views from their files or Qt's modules, and passes everything on.
class ViewWarnings {
public:
  ViewWarnings() {
    warning.clear();
    previous = qInstallMessageHandler(receive);
  }
  ~ViewWarnings() { qInstallMessageHandler(previous); }
  ViewWarnings(const ViewWarnings &) = delete;
  ViewWarnings &operator=(const ViewWarnings &) = delete;

  [[nodiscard]] static const std::string &first() { return warning; }

private:
  static void receive(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    const QByteArray category(context.category);
    const bool ofView = QByteArray(context.file).endsWith(".qml") || text.contains(".qml:") ||
                        category.startsWith("qml") || category.startsWith("qt.qml") ||
                        category.startsWith("qt.quick");
    if (ofView && type != QtDebugMsg && type != QtInfoMsg && warning.empty())
      warning = text.toStdString();
    previous(type, context, text);
  }

  static inline QtMessageHandler previous = nullptr;
  static inline std::string warning{};
};

bool hasPicture(QQuickWindow &window) {
  const QImage picture = window.grabWindow();
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x)
      if (picture.pixel(x, y) != picture.pixel(0, 0))
        return true;
  return false;
}

bool isPainted(QQuickWindow &window) {
  QEventLoop loop;
  QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, [&] { loop.exit(1); });
  QTimer::singleShot(kPatience, &loop, [&] { loop.exit(0); });
  window.update();
  return loop.exec() == 1 && hasPicture(window);
}

std::string fault(const char *name, QQuickWindow *window) {
  if (window == nullptr)
    return fmt::format("{} 打不开 / {} does not open", name, name);
  if (!isPainted(*window))
    return fmt::format("{} 没有画面 / {} stays empty", name, name);
  return ViewWarnings::first();
}

} // namespace

std::expected<void, std::string> testWindows(AppDesktop &desktop) {
  const ViewWarnings warnings;
  const auto test = [&](const char *name, Desktop::Window kind) {
    desktop.show(kind);
    return fault(name, desktop.windows().window(kind));
  };
  const std::function<std::string()> steps[] = {
      [&] { return test("OnboardingWindow", Desktop::Window::onboarding); },
      [&] { return test("MainWindow", Desktop::Window::main); },
      [&] { return test("SettingsWindow", Desktop::Window::settings); },
      [&] { return test("HelpWindow", Desktop::Window::help); },
      [&] {
        desktop.showPanel();
        return fault("Panel", desktop.panel().window());
      },
  };
  desktop.closeAll();
  for (const auto &step : steps) {
    const std::string problem = step();
    desktop.closeAll();
    if (!problem.empty())
      return std::unexpected(problem);
  }
  return {};
}

} // namespace quarrow

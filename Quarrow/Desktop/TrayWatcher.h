#pragma once

#include <QAbstractNativeEventFilter>
#include <QColor>
#include <QDBusConnection>
#include <QObject>

#include <cstdint>
#include <optional>

namespace quarrow {

// Whether the session has a place for icons of programs, and when that changes: panels start after programs
// that a login starts, and are restarted. Nothing is polled. Main thread.
//
// Qt decides with the first icon which kind it makes, for as long as the program runs; so a tray of the other
// kind that comes later does not count.
class TrayWatcher final : public QObject, public QAbstractNativeEventFilter {
  Q_OBJECT

public:
  explicit TrayWatcher(const QDBusConnection &bus);
  ~TrayWatcher() override;
  TrayWatcher(const TrayWatcher &) = delete;
  TrayWatcher &operator=(const TrayWatcher &) = delete;

  [[nodiscard]] bool hasTray() const { return kind_ && present_; }
  // What icons in one colour are drawn in, where the bar says so.
  [[nodiscard]] std::optional<QColor> foreground() const;

  bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

signals:
  void changed();
  void foregroundChanged();

private:
  enum class Kind {
    notifier, // a StatusNotifierWatcher on the session bus
    embedding // the owner of the X server's tray selection
  };

  void noteNotifier(bool present);
  void lookForEmbedding();
  void note(Kind kind, bool present);

  std::optional<Kind> kind_; // of the first tray that was there
  bool present_ = false;
  std::uint32_t selection_ = 0; // X11's name for the tray; 0 without an X server
  std::uint32_t manager_ = 0;   // the window that holds it
};

} // namespace quarrow
